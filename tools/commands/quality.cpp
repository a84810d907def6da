// quofp quality: how good the library finds frames.
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

Exit run(const Options& options) { return print_measure(options.inputs, quality_measure(), options.format); }

}  // namespace

void add_quality(Commands& commands) {
  commands.add<Options>(
      {.name = "quality",
       .summary = "Quality scores of frames, with coverage and brightness",
       .examples = {"quofp quality frame.png", "quofp quality lot/*.png --format csv > lot.csv"},
       .details =
           "Columns: quality, the sensor's score from a few pixels of every block, 0 to 100; field_quality, the score\n"
           "from the orientation field, 0 to 100; area, percent of blocks that are finger; bright, percent of their\n"
           "pixels that are brighter than the block by more than 3.5; mean_gray, their mean. A dash stands where "
           "there\n"
           "is no finger. A score of 0 with area above 0 is a frame without any ridges, or one without any fault."},
      define, run);
}

}  // namespace quofp
