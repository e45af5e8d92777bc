#ifndef CORVEX_PYTHON_TEXT_COLUMN_H_
#define CORVEX_PYTHON_TEXT_COLUMN_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <deque>
#include <string>
#include <vector>

namespace corvex_python {

// A text column of a frame as C strings the library can read without the interpreter: str
// values as UTF-8 (lone surrogates from undecodable input bytes become those bytes again),
// bytes as they are. Missing values (None, NaN, the given NA marker) and empty texts are null,
// the way an empty CSV cell says "no text". The strings are owned here, so the column stays
// valid whatever the interpreter does with the objects afterwards.
class TextColumn {
 public:
  // objects: a one-dimensional array of dtype object; missing: pandas' NA (or None).
  // The first value that is neither text nor missing is reported by firstBadRow().
  TextColumn(pybind11::array const& objects, pybind11::handle missing);

  const char* at(size_t row) const { return texts_[row]; }
  size_t size() const { return texts_.size(); }
  // Row of the first value that is not text, or -1.
  long long firstBadRow() const { return firstBadRow_; }

  // Row of the first object that is neither text nor missing, or -1.
  static long long firstNonText(pybind11::array const& objects, pybind11::handle missing);

  // Where the objects hold a non-empty text (not missing, not "").
  static pybind11::array_t<bool> hasText(pybind11::array const& objects, pybind11::handle missing);

 private:
  // The UTF-8 bytes of a str or the bytes of a bytes object; false for anything else.
  static bool bytesOf(pybind11::handle value, std::string* bytes);

  std::vector<const char*> texts_;
  std::deque<std::string> pool_;  // deque: growing it never moves a string
  long long firstBadRow_ = -1;
};

// Decodes bytes from the library for Python, undecodable bytes as lone surrogates.
pybind11::str decodeText(std::string const& bytes);

}  // namespace corvex_python

#endif  // CORVEX_PYTHON_TEXT_COLUMN_H_
