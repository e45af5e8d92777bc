#ifndef CORVEX_PYTHON_NUMBER_TEXT_PARSER_H_
#define CORVEX_PYTHON_NUMBER_TEXT_PARSER_H_

#include <cstdint>
#include <string>
#include <vector>

namespace corvex_python {

// Reads the number fields of a scan file the way `corvex locate` does: blanks and tabs around
// the text are ignored, the whole rest must be the number (std::from_chars: no '+', no
// separators; nan and inf are numbers), integers must be whole and fit their width.
class NumberTextParser {
 public:
  enum class Kind { kInt64, kInt32, kDouble, kFloat };

  // Parses one text into *value (of the kind's C type); false with the problem in *problem,
  // e.g. "expected an integer, found '1.5'" or "no value" for a blank text.
  static bool parse(std::string const& text, Kind kind, void* value, std::string* problem);

  // Bytes each value of the kind takes.
  static size_t width(Kind kind);
};

}  // namespace corvex_python

#endif  // CORVEX_PYTHON_NUMBER_TEXT_PARSER_H_
