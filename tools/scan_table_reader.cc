#include "tools/scan_table_reader.h"

#include "tools/input_buffer.h"
#include "tools/scan_stream_reader.h"

namespace corvex_cli {

bool ScanTableReader::readFile(std::string const& path, ScanTable* table, std::string* error) {
  bool const read = ScanStreamReader::readFile(path, /*strict=*/false, table, error);
  table->finish();
  return read;
}

bool ScanTableReader::readText(std::string const& name, std::string const& text, ScanTable* table,
                               std::string* error) {
  InputBuffer input(text, text.size(), name);
  bool const read = ScanStreamReader::read(&input, /*strict=*/false, table, error);
  table->finish();
  return read;
}

}  // namespace corvex_cli
