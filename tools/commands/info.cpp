// quofp info: what the library says about a frame before anything is done to it.
#include "commands.h"
#include "inputs.h"
#include "measure_table.h"

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

Exit run(const Options& options) { return print_measure(options.inputs, finger_measure(), options.format); }

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
