#include "row_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "failure.h"

namespace quofp {
namespace {

// The first field of a CSV record.
std::string first_field(const std::string& record) {
  if (record.empty() || record[0] != '"') return record.substr(0, record.find(','));
  std::string field;
  for (size_t i = 1; i < record.size(); i++) {
    if (record[i] == '"' && record[++i] != '"') break;
    field += record[i];
  }
  return field;
}

}  // namespace

void RowFile::Close::operator()(std::FILE* file) const {
  if (file != stdout) std::fclose(file);
}

RowFile::RowFile(std::string path, bool json, std::vector<Column> columns, bool resume)
    : path_(std::move(path)), json_(json), columns_(std::move(columns)) {
  std::error_code ignored;
  const bool kept =
      resume && std::filesystem::is_regular_file(path_, ignored) && std::filesystem::file_size(path_, ignored) > 0;
  if (!kept) return;
  std::ifstream in(path_, std::ios::binary);
  json_ ? count_json_rows(in) : count_csv_rows(in);
}

void RowFile::open() {
  std::error_code error;
  if (rows_ > 0) std::filesystem::resize_file(path_, end_, error);
  if (error) throw file_failure(path_, "cannot be cut to its complete rows: " + error.message());
  file_.reset(path_.empty() ? stdout : std::fopen(path_.c_str(), rows_ > 0 ? "ab" : "wb"));
  if (!file_) throw file_failure(path_, "cannot be written: " + std::string(std::strerror(errno)));
  if (rows_ == 0) put(json_ ? "[" : csv_heading(columns_) + "\n");
}

// A field in quotes may hold ends of lines.
void RowFile::count_csv_rows(std::istream& in) {
  std::string line;
  if (!std::getline(in, line) || line != csv_heading(columns_)) {
    throw file_failure(path_, "cannot be resumed: it has other columns");
  }
  end_ = line.size() + 1;
  std::string record;
  while (std::getline(in, line) && !in.eof()) {
    record += line;
    if (std::count(record.begin(), record.end(), '"') % 2 != 0) {
      record += '\n';
      continue;
    }
    if (record.empty()) throw file_failure(path_, "cannot be resumed: row " + std::to_string(rows_ + 1) + " is empty");
    end_ += record.size() + 1;
    rows_++;
    errors_ += record.back() != ',';
    last_name_ = first_field(record);
    record.clear();
  }
}

void RowFile::count_json_rows(std::istream& in) {
  std::string line;
  if (!std::getline(in, line) || line != "[") throw file_failure(path_, "cannot be resumed: it is not from --json");
  size_t at = line.size() + 1;
  while (std::getline(in, line)) {
    const size_t length = line.size() - (line.ends_with(",") ? 1 : 0);
    const auto row =
        nlohmann::ordered_json::parse(line.begin(), line.begin() + static_cast<ptrdiff_t>(length), nullptr, false);
    if (!row.is_object()) break;
    const auto same = [](const auto& field, const Column& column) { return field.first == column.name; };
    const auto& fields = row.get_ref<const nlohmann::ordered_json::object_t&>();
    if (!std::equal(fields.begin(), fields.end(), columns_.begin(), columns_.end(), same) || !row.front().is_string()) {
      throw file_failure(path_, "cannot be resumed: it has other columns");
    }
    rows_++;
    errors_ += !row.back().is_null();
    last_name_ = row.front().get<std::string>();
    end_ = at + length;
    at += line.size() + 1;
  }
}

void RowFile::put(const std::string& text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size();
  if (!written || std::fflush(file_.get()) != 0) {
    throw file_failure(path_.empty() ? "standard output" : path_,
                       "cannot be written: " + std::string(std::strerror(errno)));
  }
}

void RowFile::write(const std::string& line) {
  put(json_ ? (rows_ > 0 ? ",\n" : "\n") + line : line + "\n");
  rows_++;
}

void RowFile::finish() {
  if (json_) put("\n]\n");
}

}  // namespace quofp
