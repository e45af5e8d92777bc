#include "tools/json_scan_reader.h"

#include <cstdio>

namespace corvex_cli {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

void appendUtf8(uint32_t codePoint, std::string* out) {
  if (codePoint < 0x80) {
    out->push_back(static_cast<char>(codePoint));
  } else if (codePoint < 0x800) {
    out->push_back(static_cast<char>(0xC0 | codePoint >> 6));
    out->push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
  } else if (codePoint < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | codePoint >> 12));
    out->push_back(static_cast<char>(0x80 | (codePoint >> 6 & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | codePoint >> 18));
    out->push_back(static_cast<char>(0x80 | (codePoint >> 12 & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (codePoint >> 6 & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
  }
}

// A character as a message shows it: printable ones quoted, others by their code.
std::string shown(char c) {
  if (c > ' ' && c < 0x7F) {
    return std::string("'") + c + "'";
  }
  char code[8];
  std::snprintf(code, sizeof code, "0x%02X", static_cast<unsigned char>(c));
  return code;
}

}  // namespace

JsonScanReader::JsonScanReader(InputBuffer* in, ScanRecordBuilder* builder)
    : in_(in), builder_(builder) {}

bool JsonScanReader::read(std::string* error) {
  bool closed = false;
  bool separated = false;
  auto const afterElement = [this, &closed, &separated] {
    char c = 0;
    if (!peek(&c)) {
      return false;
    }
    if (c != ',' && c != ']') {
      return fail("expected ',' or ']' after a record");
    }
    ++p_;
    closed = c == ']';
    separated = c == ',';
    return true;
  };
  auto const element = [this, &closed, &separated] {
    char c = 0;
    if (!peek(&c)) {
      return false;
    }
    if (c == ']' && !separated) {
      ++p_;
      closed = true;
      return true;
    }
    return parseElement();
  };
  if (!consumeBlanks(error) ||
      step([this] { return expect('[', "an array of records"); }, error) != Step::kDone) {
    return false;
  }
  while (!closed) {
    if (!consumeBlanks(error) || step(element, error) != Step::kDone) {
      return false;
    }
    if (!closed) {
      if (!builder_->finish(error)) {
        return false;
      }
      separated = false;
      if (!consumeBlanks(error) || step(afterElement, error) != Step::kDone) {
        return false;
      }
    }
  }
  if (!consumeBlanks(error)) {
    return false;
  }
  if (in_->size() != 0) {
    *error = in_->name() + ":" + std::to_string(line_) + ": invalid JSON: text after the array";
    return false;
  }
  return true;
}

template <typename Parse>
JsonScanReader::Step JsonScanReader::step(Parse const& parse, std::string* error) {
  while (true) {
    p_ = in_->begin();
    end_ = in_->end();
    int const line = line_;
    needMore_ = false;
    bool const parsed = parse();
    if (parsed && static_cast<size_t>(p_ - in_->begin()) <= kMaxRecordBytes) {
      in_->consume(static_cast<size_t>(p_ - in_->begin()));
      return Step::kDone;
    }
    if (!parsed && !needMore_) {
      *error = in_->name() + ":" + std::to_string(line_) + ": invalid JSON: " + problem_;
      return Step::kFailed;
    }
    line_ = line;
    if (parsed || in_->size() > kMaxRecordBytes) {
      *error = in_->name() + ":" + std::to_string(line_) + ": record longer than " +
               std::to_string(kMaxRecordBytes) + " bytes";
      return Step::kFailed;
    }
    atEnd_ = !in_->fill(error);
    if (in_->failed()) {
      return Step::kFailed;
    }
  }
}

void JsonScanReader::skipBlanks() {
  while (p_ < end_ && (*p_ == ' ' || *p_ == '\n' || *p_ == '\r' || *p_ == '\t')) {
    line_ += *p_ == '\n';
    ++p_;
  }
}

bool JsonScanReader::consumeBlanks(std::string* error) {
  // Blanks between records are consumed as they come, so a long run of them never fills the
  // buffer.
  while (true) {
    p_ = in_->begin();
    end_ = in_->end();
    skipBlanks();
    in_->consume(static_cast<size_t>(p_ - in_->begin()));
    if (p_ < end_ || atEnd_) {
      return true;
    }
    atEnd_ = !in_->fill(error);
    if (in_->failed()) {
      return false;
    }
  }
}

bool JsonScanReader::ranOut() {
  if (atEnd_) {
    return fail("unexpected end of input");
  }
  needMore_ = true;
  return false;
}

bool JsonScanReader::fail(std::string const& problem) {
  problem_ = problem;
  return false;
}

bool JsonScanReader::peek(char* c) {
  if (p_ == end_) {
    return ranOut();
  }
  *c = *p_;
  return true;
}

bool JsonScanReader::expect(char c, char const* what) {
  char found = 0;
  if (!peek(&found)) {
    return false;
  }
  if (found != c) {
    return fail(std::string("expected ") + what + ", found " + shown(found));
  }
  ++p_;
  return true;
}

bool JsonScanReader::parseElement() {
  char c = 0;
  if (!peek(&c)) {
    return false;
  }
  if (c != '{') {
    return fail("record " + std::to_string(elements_ + 1) + " is not an object");
  }
  ++p_;
  builder_->start(line_);
  otherKeys_.clear();
  uint32_t seen = 0;
  skipBlanks();
  if (!peek(&c)) {
    return false;
  }
  if (c == '}') {
    ++p_;
    ++elements_;
    return true;
  }
  while (true) {
    if (!parseMember(&seen)) {
      return false;
    }
    skipBlanks();
    if (!peek(&c)) {
      return false;
    }
    ++p_;
    if (c == '}') {
      ++elements_;
      return true;
    }
    if (c != ',') {
      return fail("expected ',' or '}' after a value, found " + shown(c));
    }
    skipBlanks();
  }
}

bool JsonScanReader::parseMember(uint32_t* seen) {
  std::string_view key;
  if (!parseKey(&key)) {
    return false;
  }
  int const field = ScanRecordBuilder::findField(key);
  bool const repeated =
      field >= 0 ? (*seen >> field & 1U) != 0 : !otherKeys_.insert(std::string(key)).second;
  if (repeated) {
    return fail("key '" + std::string(key) + "' appears twice in a record");
  }
  if (field >= 0) {
    *seen |= 1U << field;
  }
  skipBlanks();
  if (!expect(':', "':'")) {
    return false;
  }
  skipBlanks();
  int const line = line_;
  char c = 0;
  if (!peek(&c)) {
    return false;
  }
  using Kind = ScanRecordBuilder::Kind;
  std::string_view text;
  Kind kind = Kind::kOther;
  if (c == '"') {
    kind = Kind::kString;
    if (!parseString(field >= 0 ? builder_->scratch(field) : &skipped_, &text)) {
      return false;
    }
  } else if (c == '-' || isDigit(c)) {
    kind = Kind::kNumber;
    if (!parseNumber(&text)) {
      return false;
    }
  } else if (c == 'n') {
    return parseLiteral("null");  // no value
  } else {
    text = c == '{' ? "an object" : c == '[' ? "an array" : c == 't' ? "true" : "false";
    if (!skipValue(1)) {
      return false;
    }
  }
  if (field >= 0) {
    builder_->set(field, kind, text, line);
  }
  return true;
}

bool JsonScanReader::parseKey(std::string_view* key) {
  char c = 0;
  if (!peek(&c)) {
    return false;
  }
  if (c != '"') {
    return fail("expected a key, found " + shown(c));
  }
  return parseString(&key_, key);
}

bool JsonScanReader::parseString(std::string* decoded, std::string_view* text) {
  ++p_;  // the opening quote
  char const* const begin = p_;
  bool escaped = false;
  while (true) {
    if (p_ == end_) {
      return ranOut();
    }
    char const c = *p_;
    if (c == '"') {
      break;
    }
    if (static_cast<unsigned char>(c) < 0x20) {
      return fail("control character " + shown(c) + " in a string");
    }
    if (c == '\\') {
      if (!escaped) {
        decoded->assign(begin, p_);
        escaped = true;
      }
      ++p_;
      if (!parseEscape(decoded)) {
        return false;
      }
      continue;
    }
    if (escaped) {
      decoded->push_back(c);
    }
    ++p_;
  }
  *text = escaped ? std::string_view(*decoded)
                  : std::string_view(begin, static_cast<size_t>(p_ - begin));
  ++p_;  // the closing quote
  return true;
}

bool JsonScanReader::parseEscape(std::string* decoded) {
  char c = 0;
  if (!peek(&c)) {
    return false;
  }
  ++p_;
  static constexpr char kEscaped[] = "\"\\/bfnrt";
  static constexpr char kMeant[] = "\"\\/\b\f\n\r\t";
  for (size_t i = 0; kEscaped[i] != '\0'; ++i) {
    if (c == kEscaped[i]) {
      decoded->push_back(kMeant[i]);
      return true;
    }
  }
  if (c != 'u') {
    return fail("invalid escape \\" + std::string(1, c) + " in a string");
  }
  uint32_t codePoint = 0;
  if (!parseHex4(&codePoint)) {
    return false;
  }
  if (codePoint >= 0xD800 && codePoint < 0xDC00) {  // needs its low surrogate
    uint32_t low = 0;
    if (!parseLiteral("\\u")) {
      return needMore_ ? false : fail("unpaired surrogate in a string");
    }
    if (!parseHex4(&low)) {
      return false;
    }
    if (low < 0xDC00 || low >= 0xE000) {
      return fail("unpaired surrogate in a string");
    }
    codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (low - 0xDC00);
  } else if (codePoint >= 0xDC00 && codePoint < 0xE000) {
    return fail("unpaired surrogate in a string");
  }
  appendUtf8(codePoint, decoded);
  return true;
}

bool JsonScanReader::parseHex4(uint32_t* value) {
  for (int i = 0; i < 4; ++i) {
    char c = 0;
    if (!peek(&c)) {
      return false;
    }
    int const digit = isDigit(c)             ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : -1;
    if (digit < 0) {
      return fail("invalid \\u escape in a string");
    }
    *value = *value << 4 | static_cast<uint32_t>(digit);
    ++p_;
  }
  return true;
}

bool JsonScanReader::parseNumber(std::string_view* text) {
  char const* const begin = p_;
  auto const digits = [this](bool required) {
    if (p_ == end_) {
      return ranOut();
    }
    if (required && !isDigit(*p_)) {
      return fail("invalid number");
    }
    while (p_ < end_ && isDigit(*p_)) {
      ++p_;
    }
    return p_ < end_ || atEnd_ || ranOut();  // more digits may follow
  };
  if (*p_ == '-') {
    ++p_;
  }
  if (p_ < end_ && *p_ == '0') {
    ++p_;
    if (p_ == end_ && !atEnd_) {
      return ranOut();
    }
  } else if (!digits(true)) {
    return false;
  }
  if (p_ < end_ && *p_ == '.') {
    ++p_;
    if (!digits(true)) {
      return false;
    }
  }
  if (p_ < end_ && (*p_ == 'e' || *p_ == 'E')) {
    ++p_;
    if (p_ < end_ && (*p_ == '+' || *p_ == '-')) {
      ++p_;
    }
    if (!digits(true)) {
      return false;
    }
  }
  *text = std::string_view(begin, static_cast<size_t>(p_ - begin));
  return true;
}

bool JsonScanReader::parseLiteral(char const* literal) {
  for (char const* c = literal; *c != '\0'; ++c) {
    if (p_ == end_) {
      return ranOut();
    }
    if (*p_ != *c) {
      return fail("invalid literal, expected " + std::string(literal));
    }
    ++p_;
  }
  return true;
}

bool JsonScanReader::skipValue(int depth) {
  if (depth > kMaxDepth) {
    return fail("values nested deeper than " + std::to_string(kMaxDepth) + " levels");
  }
  char c = 0;
  if (!peek(&c)) {
    return false;
  }
  std::string_view text;
  switch (c) {
    case '"':
      return parseString(&skipped_, &text);
    case 't':
      return parseLiteral("true");
    case 'f':
      return parseLiteral("false");
    case 'n':
      return parseLiteral("null");
    case '{':
    case '[':
      break;
    default:
      if (c == '-' || isDigit(c)) {
        return parseNumber(&text);
      }
      return fail("unexpected character " + shown(c));
  }
  char const close = c == '{' ? '}' : ']';
  ++p_;
  skipBlanks();
  if (!peek(&c)) {
    return false;
  }
  if (c == close) {
    ++p_;
    return true;
  }
  while (true) {
    if (close == '}') {
      if (!parseKey(&text)) {
        return false;
      }
      skipBlanks();
      if (!expect(':', "':'")) {
        return false;
      }
      skipBlanks();
    }
    if (!skipValue(depth + 1)) {
      return false;
    }
    skipBlanks();
    if (!peek(&c)) {
      return false;
    }
    ++p_;
    if (c == close) {
      return true;
    }
    if (c != ',') {
      return fail("expected ',' or '" + std::string(1, close) + "', found " + shown(c));
    }
    skipBlanks();
  }
}

}  // namespace corvex_cli
