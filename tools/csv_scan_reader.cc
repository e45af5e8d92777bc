#include "tools/csv_scan_reader.h"

#include <algorithm>
#include <utility>

namespace corvex_cli {
namespace {

// A line end at p: LF, or CR before LF or at the end of the text read so far.
bool isLineEnd(char const* p, char const* end) {
  return *p == '\n' || (*p == '\r' && (p + 1 == end || p[1] == '\n'));
}

std::string trimmed(char const* begin, char const* end) {
  while (begin < end && (*begin == ' ' || *begin == '\t')) {
    ++begin;
  }
  while (end > begin && (end[-1] == ' ' || end[-1] == '\t')) {
    --end;
  }
  return std::string(begin, end);
}

void unescape(char const* begin, char const* end, std::string* out) {
  out->reserve(static_cast<size_t>(end - begin));
  for (char const* c = begin; c < end; ++c) {
    out->push_back(*c);
    if (*c == '"') {
      ++c;  // "" stands for one quote
    }
  }
}

}  // namespace

CsvScanReader::CsvScanReader(InputBuffer* in, ScanRecordBuilder* builder)
    : in_(in), builder_(builder) {}

bool CsvScanReader::read(std::string* error) {
  if (!readHeader(error)) {
    return false;
  }
  while (true) {
    Status const status = nextRow([this](size_t column, Field const& field,
                                         std::string* e) { return setValue(column, field, e); },
                                  error);
    if (status == Status::kEnd) {
      return !in_->failed();
    }
    if (status == Status::kFailed || !builder_->finish(error)) {
      return false;
    }
  }
}

bool CsvScanReader::readHeader(std::string* error) {
  // Only the field of each column is kept, so that a long header costs little memory.
  std::vector<int> fields;
  std::string name;
  Status const status = nextRow(
      [&fields, &name](size_t column, Field const& field, std::string*) {
        fields.resize(column);  // a row is split again once more of it has been read
        name.clear();
        if (field.escaped) {
          unescape(field.begin, field.end, &name);
        } else {
          name.assign(field.begin, field.end);
        }
        fields.push_back(
            ScanRecordBuilder::findField(trimmed(name.data(), name.data() + name.size())));
        return true;
      },
      error);
  if (status != Status::kRow) {
    return status == Status::kEnd && !in_->failed();  // an empty input has no records
  }
  std::vector<bool> seen(ScanRecordBuilder::kFieldCount, false);
  for (int field : fields) {
    // Other columns are not read, so only a field that is read must be unambiguous.
    if (field >= 0 && seen[field]) {
      *error =
          at(rowLine_) + ": column '" + ScanRecordBuilder::fieldName(field) + "' appears twice";
      return false;
    }
    if (field >= 0) {
      seen[field] = true;
    }
  }
  for (int field = ScanRecordBuilder::kTag + 1; field < ScanRecordBuilder::kFieldCount; ++field) {
    if (!seen[field]) {
      *error = at(rowLine_) + ": missing column '" + ScanRecordBuilder::fieldName(field) + "'";
      return false;
    }
  }
  fieldOfColumn_ = std::move(fields);
  return true;
}

bool CsvScanReader::setValue(size_t column, Field const& field, std::string* error) {
  if (column >= fieldOfColumn_.size()) {
    *error = at(rowLine_) + ": expected " + std::to_string(fieldOfColumn_.size()) +
             " fields as in the header, found more";
    return false;
  }
  if (column == 0) {
    builder_->start(rowLine_);  // also when a row is split again once more has been read
  }
  int const target = fieldOfColumn_[column];
  if (target < 0) {
    return true;
  }
  if (!field.escaped) {
    builder_->set(target, ScanRecordBuilder::Kind::kText,
                  std::string_view(field.begin, static_cast<size_t>(field.end - field.begin)),
                  rowLine_);
    return true;
  }
  std::string* const text = builder_->scratch(target);
  unescape(field.begin, field.end, text);
  builder_->set(target, ScanRecordBuilder::Kind::kText, *text, rowLine_);
  return true;
}

template <typename OnField>
CsvScanReader::Status CsvScanReader::nextRow(OnField const& onField, std::string* error) {
  bool atEnd = in_->size() == 0 && !in_->fill(error);
  while (true) {
    Status const status = splitRow(atEnd, onField, error);
    if (status != Status::kNeedMore) {
      return status;
    }
    if (in_->size() > kMaxRowBytes) {
      *error = at(rowLine_) + ": line longer than " + std::to_string(kMaxRowBytes) + " bytes";
      return Status::kFailed;
    }
    atEnd = !in_->fill(error);
    if (in_->failed()) {
      return Status::kFailed;
    }
  }
}

template <typename OnField>
CsvScanReader::Status CsvScanReader::splitRow(bool atEnd, OnField const& onField,
                                              std::string* error) {
  if (!skipEmptyLines(atEnd)) {
    return in_->size() == 0 && atEnd ? Status::kEnd : Status::kNeedMore;
  }
  char const* p = in_->begin();
  char const* const end = in_->end();
  int line = line_;
  rowLine_ = line;
  for (size_t column = 0;; ++column) {
    Field field{p, p, false};
    Status const split = *p == '"' ? splitQuoted(&p, atEnd, &line, &field, error)
                                   : splitUnquoted(&p, &field, line, error);
    if (split != Status::kRow) {
      return split;
    }
    if ((p == end || (*p == '\r' && p + 1 == end)) && !atEnd) {
      return Status::kNeedMore;
    }
    if (!onField(column, field, error)) {
      return Status::kFailed;
    }
    if (p == end || *p != ',') {
      return endRow(p, column + 1, line, error);
    }
    ++p;
  }
}

bool CsvScanReader::skipEmptyLines(bool atEnd) {
  char const* p = in_->begin();
  char const* const end = in_->end();
  while (p < end && (*p == '\n' || (*p == '\r' && p + 1 < end && p[1] == '\n') ||
                     (*p == '\r' && p + 1 == end && atEnd))) {
    p += *p == '\r' && p + 1 < end ? 2 : 1;
    ++line_;
  }
  // Consumed at once, so that only the row itself counts towards its length.
  in_->consume(static_cast<size_t>(p - in_->begin()));
  return p < end;
}

CsvScanReader::Status CsvScanReader::splitQuoted(char const** at, bool atEnd, int* line,
                                                 Field* field, std::string* error) {
  char const* const end = in_->end();
  char const* q = *at + 1;
  int const quoteLine = *line;
  while (true) {
    q = std::find_if(q, end, [](char c) { return c == '"' || c == '\n'; });
    if (q == end || (q + 1 == end && !atEnd)) {
      if (!atEnd) {
        return Status::kNeedMore;  // the field, or what follows its quote, may go on
      }
      if (q == end) {
        *error = this->at(quoteLine) + ": unterminated quoted field";
        return Status::kFailed;
      }
    }
    if (*q == '\n') {
      ++*line;
      ++q;
    } else if (q + 1 < end && q[1] == '"') {
      field->escaped = true;
      q += 2;
    } else {
      break;
    }
  }
  *field = {*at + 1, q, field->escaped};
  *at = q + 1;
  if (*at < end && **at != ',' && !isLineEnd(*at, end)) {
    *error = this->at(*line) + ": unexpected text after a closing quote";
    return Status::kFailed;
  }
  return Status::kRow;
}

CsvScanReader::Status CsvScanReader::splitUnquoted(char const** at, Field* field, int line,
                                                   std::string* error) {
  char const* const end = in_->end();
  char const* p = *at;
  while (p < end && *p != ',' && !isLineEnd(p, end)) {
    if (*p == '"') {
      *error = this->at(line) + ": quote inside an unquoted field";
      return Status::kFailed;
    }
    ++p;
  }
  field->end = p;
  *at = p;
  return Status::kRow;
}

CsvScanReader::Status CsvScanReader::endRow(char const* p, size_t fields, int line,
                                            std::string* error) {
  char const* const end = in_->end();
  if (p < end) {
    p = std::min(p + (*p == '\r' ? 2 : 1), end);  // the line end
  }
  if (static_cast<size_t>(p - in_->begin()) > kMaxRowBytes) {
    *error = at(rowLine_) + ": line longer than " + std::to_string(kMaxRowBytes) + " bytes";
    return Status::kFailed;
  }
  if (!fieldOfColumn_.empty() && fields < fieldOfColumn_.size()) {
    *error = at(rowLine_) + ": expected " + std::to_string(fieldOfColumn_.size()) +
             " fields as in the header, found " + std::to_string(fields);
    return Status::kFailed;
  }
  in_->consume(static_cast<size_t>(p - in_->begin()));
  line_ = line + 1;
  return Status::kRow;
}

std::string CsvScanReader::at(int line) const { return in_->name() + ":" + std::to_string(line); }

}  // namespace corvex_cli
