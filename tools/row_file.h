// Rows written one by one, so that a long run shows what it has and can go on where another one stopped.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "table.h"

namespace quofp {

/** A CSV file with a heading, or a JSON array with one object a line. The first column is the name of a frame, the last
 *  one its error. Every row is written through at once. */
class RowFile {
 public:
  /** Without a path standard output. With `resume` the complete rows of a file that exists are to stay.
   *  @throws Failure when that has other columns */
  RowFile(std::string path, bool json, std::vector<Column> columns, bool resume);

  /** Begins the file; of one that is resumed cuts off what was half written. @throws Failure */
  void open();

  size_t rows() const { return rows_; }
  /** Of the last row that was there before, and how many of those have an error. */
  const std::string& last_name() const { return last_name_; }
  size_t errors() const { return errors_; }

  /** A row in the file's form, for write(). */
  std::string line(const std::vector<Cell>& row) const {
    return json_ ? json_row(columns_, row) : csv_row(columns_, row);
  }

  /** @throws Failure */
  void write(const std::string& line);

  /** Writes what makes the file complete; without it a CSV file is complete, too. @throws Failure */
  void finish();

 private:
  struct Close {
    void operator()(std::FILE* file) const;
  };

  void put(const std::string& text);
  void count_csv_rows(std::istream& in);
  void count_json_rows(std::istream& in);

  std::string path_;
  bool json_;
  std::vector<Column> columns_;
  size_t rows_ = 0;
  size_t end_ = 0;  // of these rows in the file
  size_t errors_ = 0;
  std::string last_name_;
  std::unique_ptr<std::FILE, Close> file_;
};

}  // namespace quofp
