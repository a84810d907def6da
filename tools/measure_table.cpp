#include "measure_table.h"

#include <iostream>

namespace quofp {

Exit print_measure(const Inputs& inputs, const Measure& measure, Format format) {
  std::vector<Column> columns = {{"file"}};
  columns.insert(columns.end(), measure.columns.begin(), measure.columns.end());
  Table table(columns);
  const Exit exit = for_each_frame(inputs, [&](const Frame& frame) {
    std::vector<Cell> row = {frame.name};
    const std::vector<Cell> cells = measure.take(frame);
    row.insert(row.end(), cells.begin(), cells.end());
    table.add(row);
    return Exit::kDone;
  });
  table.print(std::cout, format);
  return exit;
}

}  // namespace quofp
