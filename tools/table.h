// One set of rows, shown as an aligned table, as CSV or as JSON.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quofp {

enum class Format { kTable, kCsv, kJson };

/** A column: its name is the same in all three formats, lower case with underscores, and does not change between
 *  versions. Values of type double show this many decimals. */
struct Column {
  std::string name;
  int decimals = 2;
};

/** A value; std::monostate where there is none: "-" in a table, empty in CSV, null in JSON. */
using Cell = std::variant<std::monostate, std::string, int64_t, double, bool>;

/** The cell of a value that may be missing. */
template <typename T>
Cell optional_cell(const std::optional<T>& value) {
  return value ? Cell(*value) : Cell();
}

/** The heading and a row as CSV lines, a row as a JSON object in one line; each without the end of the line. */
std::string csv_heading(const std::vector<Column>& columns);
std::string csv_row(const std::vector<Column>& columns, const std::vector<Cell>& row);
std::string json_row(const std::vector<Column>& columns, const std::vector<Cell>& row);

class Table {
 public:
  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /** Adds a row with one cell a column. */
  void add(std::vector<Cell> row);

  bool empty() const { return rows_.empty(); }

  void print(std::ostream& out, Format format) const;

 private:
  void print_aligned(std::ostream& out) const;
  void print_csv(std::ostream& out) const;
  void print_json(std::ostream& out) const;

  std::vector<Column> columns_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace quofp
