#include "tools/json_scan_source.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>

namespace corvex_cli {
namespace {

using nlohmann::json;

// Where the JSON parser has read to.
struct ReadPosition {
  int line = 1;               // line of the next character
  bool afterLineEnd = false;  // the last character read was a line end

  // The parser reports a token once it has read it, and after a number one character more;
  // the last character read therefore sits on the token's line unless it is a line end.
  int tokenLine() const { return afterLineEnd ? line - 1 : line; }
};

// Hands the text to the JSON parser character by character, keeping the read position.
class LineCountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = char const*;
  using reference = char const&;

  LineCountingIterator(char const* at, ReadPosition* position) : at_(at), position_(position) {}

  reference operator*() const { return *at_; }
  LineCountingIterator& operator++() {
    position_->afterLineEnd = *at_ == '\n';
    if (position_->afterLineEnd) {
      ++position_->line;
    }
    ++at_;
    return *this;
  }
  bool operator==(LineCountingIterator const& other) const { return at_ == other.at_; }
  bool operator!=(LineCountingIterator const& other) const { return at_ != other.at_; }

 private:
  char const* at_;
  ReadPosition* position_;  // shared by all copies
};

// Lines of the array's elements and of their keys, in element order.
struct ElementLines {
  std::vector<int> starts;
  std::vector<std::map<std::string, int>> keys;
};

std::string at(std::string const& name, int line) { return name + ":" + std::to_string(line); }

// "[json.exception.parse_error.101] parse error at line 2, column 5: syntax error ..." keeps
// only the problem: the position is given in the caller's own form.
std::string problemOf(json::exception const& e) {
  std::string const what = e.what();
  size_t const column = what.find("column ");
  if (column != std::string::npos && what.find(": ", column) != std::string::npos) {
    return what.substr(what.find(": ", column) + 2);
  }
  size_t const tagEnd = what.find("] ");
  return tagEnd == std::string::npos ? what : what.substr(tagEnd + 2);
}

int lineOfByte(std::string const& text, size_t byte) {
  size_t const end = std::min(byte > 0 ? byte - 1 : 0, text.size());
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + end, '\n'));
}

RawField toRawField(json const& value, int line) {
  RawField field;
  field.line = line;
  switch (value.type()) {
    case json::value_t::string:
      field.kind = RawField::Kind::kString;
      field.text = value.get<std::string>();
      break;
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
    case json::value_t::number_float:
      field.kind = RawField::Kind::kNumber;
      field.text = value.dump();
      break;
    case json::value_t::object:
      field.kind = RawField::Kind::kOther;
      field.text = "an object";
      break;
    case json::value_t::array:
      field.kind = RawField::Kind::kOther;
      field.text = "an array";
      break;
    default:
      field.kind = RawField::Kind::kOther;
      field.text = value.dump();  // true or false
      break;
  }
  return field;
}

}  // namespace

bool JsonScanSource::read(std::string const& name, std::string const& text,
                          std::vector<RawScanRecord>* records, std::string* error) {
  ReadPosition position;
  ElementLines lines;
  auto const track = [&position, &lines](int depth, json::parse_event_t event, json& parsed) {
    bool const elementStart = event == json::parse_event_t::object_start ||
                              event == json::parse_event_t::array_start ||
                              event == json::parse_event_t::value;
    if (depth == 1 && elementStart) {
      lines.starts.push_back(position.tokenLine());
      lines.keys.emplace_back();
    } else if (depth == 2 && event == json::parse_event_t::key && !lines.keys.empty()) {
      lines.keys.back()[parsed.get<std::string>()] = position.tokenLine();
    }
    return true;
  };
  json document;
  try {
    document = json::parse(LineCountingIterator(text.data(), &position),
                           LineCountingIterator(text.data() + text.size(), &position), track);
  } catch (json::parse_error const& e) {
    *error = at(name, lineOfByte(text, e.byte)) + ": invalid JSON: " + problemOf(e);
    return false;
  } catch (json::exception const& e) {  // a number beyond the range of a double
    *error = at(name, position.tokenLine()) + ": invalid JSON: " + problemOf(e);
    return false;
  }
  if (!document.is_array()) {
    *error = at(name, 1) + ": expected an array of records";
    return false;
  }
  for (size_t i = 0; i < document.size(); ++i) {
    json const& element = document[i];
    RawScanRecord record;
    record.line = lines.starts[i];
    if (!element.is_object()) {
      *error = at(name, record.line) + ": record " + std::to_string(i + 1) + " is not an object";
      return false;
    }
    for (auto const& [key, value] : element.items()) {
      if (!value.is_null()) {
        record.fields[key] = toRawField(value, lines.keys[i][key]);
      }
    }
    records->push_back(std::move(record));
  }
  return true;
}

}  // namespace corvex_cli
