#include "number_text_parser.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace corvex_python {

namespace {

std::string trimmed(std::string const& text) {
  size_t const first = text.find_first_not_of(" \t");
  if (first == std::string::npos) {
    return "";
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string quoted(std::string const& text) { return "'" + text + "'"; }

template <typename T>
bool parseWhole(std::string const& text, T* value, char const* typeName, std::string* problem) {
  char const* const end = text.data() + text.size();
  std::from_chars_result const result = std::from_chars(text.data(), end, *value);
  if (result.ec == std::errc::result_out_of_range) {
    *problem = quoted(text) + " is out of range for " + typeName;
    return false;
  }
  if (result.ec != std::errc() || result.ptr != end) {
    *problem = std::string("expected ") +
               (std::numeric_limits<T>::is_integer ? "an integer" : "a number") + ", found " +
               quoted(text);
    return false;
  }
  return true;
}

bool parseInt32(std::string const& text, int32_t* value, std::string* problem) {
  long long wide = 0;
  if (!parseWhole(text, &wide, "a 32-bit integer", problem)) {
    return false;
  }
  if (wide < std::numeric_limits<int32_t>::min() || wide > std::numeric_limits<int32_t>::max()) {
    *problem = quoted(std::to_string(wide)) + " is out of range for a 32-bit integer";
    return false;
  }
  *value = static_cast<int32_t>(wide);
  return true;
}

}  // namespace

bool NumberTextParser::parse(std::string const& text, Kind kind, void* value,
                             std::string* problem) {
  std::string const number = trimmed(text);
  if (number.empty()) {
    *problem = "no value";
    return false;
  }
  switch (kind) {
    case Kind::kInt64: {
      long long wide = 0;
      if (!parseWhole(number, &wide, "a 64-bit integer", problem)) {
        return false;
      }
      *static_cast<int64_t*>(value) = wide;
      return true;
    }
    case Kind::kInt32:
      return parseInt32(number, static_cast<int32_t*>(value), problem);
    case Kind::kDouble:
      return parseWhole(number, static_cast<double*>(value), "a double", problem);
    case Kind::kFloat:
      return parseWhole(number, static_cast<float*>(value), "a float", problem);
  }
  return false;
}

size_t NumberTextParser::width(Kind kind) {
  switch (kind) {
    case Kind::kInt64:
    case Kind::kDouble:
      return 8;
    case Kind::kInt32:
    case Kind::kFloat:
      return 4;
  }
  return 8;
}

}  // namespace corvex_python
