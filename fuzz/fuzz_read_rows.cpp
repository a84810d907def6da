// Any bytes as a file of rows that a batch goes on with: it stays as it is and is refused by name, or its complete rows
// stay, whole and to the byte, and those that follow make it a file that can be gone on with again.
// Input: form, and whether a heading is put before; then the file.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "failure.h"
#include "row_file.h"
#include "support/fuzz.h"

using namespace quo_fuzz;

namespace {

const std::vector<quofp::Column> kColumns = {{"file"}, {"width"}, {"error"}};

std::string read(const std::string& path) {
  std::stringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

// The complete rows of the file at `path`, or nothing when it is refused.
std::optional<size_t> go_on(const std::string& path, bool json, const std::string& before) {
  try {
    quofp::RowFile file(path, json, kColumns, true);
    const size_t rows = file.rows();
    file.open();
    file.write(file.line({"another", int64_t{160}, {}}));
    file.finish();
    require(file.errors() <= rows, "only rows have errors");
    return rows;
  } catch (const quofp::Failure& failure) {
    require(failure.subject() == path && !failure.reason().empty(), "a failure names the file and says why");
    require(read(path) == before, "a file that is refused stays as it is");
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = std::filesystem::temp_directory_path() / ("rows-" + std::to_string(::getpid()));
  Input input(data, size);
  const uint8_t form = input.byte();
  const bool json = form % 2 == 1;
  std::string bytes;
  if (form % 4 >= 2) bytes = json ? "[\n" : quofp::csv_heading(kColumns) + "\n";
  bytes.append(input.rest().begin(), input.rest().end());
  std::ofstream(path, std::ios::binary) << bytes;
  if (const auto rows = go_on(path, json, bytes)) {
    const std::string longer = read(path);
    require(go_on(path, json, longer) == *rows + 1, "all rows are found again");
  }
  std::filesystem::remove(path);
  return 0;
}
