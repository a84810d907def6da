// quofp info: what the library says about a frame before anything is done to it.
#include <iostream>

#include "commands.h"
#include "inputs.h"
#include "measures.h"
#include "quoFPAlg.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  add_format_option(command, options.format);
}

// The library says 255 where there is no finger to take a mean of.
Cell mean_cell(uint8_t mean) { return mean == 255 ? Cell() : Cell(int64_t{mean}); }

std::vector<Cell> row_of(const Frame& frame) {
  const Finger finger = find_finger(frame);
  uint8_t quarters[4] = {};
  check_result(frame.name, "FP_GetBlockValidArea",
               FP_GetBlockValidArea(frame.data(), frame.width, frame.height, &quarters[0], &quarters[1], &quarters[2],
                                    &quarters[3]));
  std::vector<Cell> row = {frame.name,
                           frame.width,
                           frame.height,
                           finger.background,
                           finger.background_found,
                           finger.coverage,
                           optional_cell(finger.mean)};
  row.push_back(finger.coverage == 0 ? Cell() : Cell(finger.centre_x));
  row.push_back(finger.coverage == 0 ? Cell() : Cell(finger.centre_y));
  for (const uint8_t quarter : quarters) row.push_back(mean_cell(quarter));
  return row;
}

Exit run(const Options& options) {
  Table table({{"file"},
               {"width"},
               {"height"},
               {"background"},
               {"found"},
               {"coverage"},
               {"mean"},
               {"centre_x"},
               {"centre_y"},
               {"top_left"},
               {"top_right"},
               {"bottom_left"},
               {"bottom_right"}});
  const Exit exit = for_each_frame(options.inputs, [&table](const Frame& frame) {
    table.add(row_of(frame));
    return Exit::kDone;
  });
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_info(Commands& commands) {
  commands.add<Options>(
      {.name = "info",
       .summary = "Size, background, coverage and finger of frames",
       .examples = {"quofp info frame.png", "quofp info lot/*.png --format csv > lot.csv",
                    "quofp info dump.raw --size 160x160 --format json"},
       .details =
           "Columns: background, the gray below which a block of 8 x 8 pixels is finger, 255 when no corner of the\n"
           "frame looks like background (found: no); coverage, percent of blocks with finger; mean, their mean\n"
           "gray; centre_x and centre_y, mean top left corner of these blocks in pixels; top_left to bottom_right,\n"
           "mean gray of the finger in each quarter. A dash stands where there is no finger."},
      define, run);
}

}  // namespace quofp
