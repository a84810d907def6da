// quofp quality: how good the library finds frames.
#include <iostream>

#include "commands.h"
#include "inputs.h"
#include "measures.h"
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

Exit run(const Options& options) {
  Table table({{"file"}, {"quality"}, {"field_quality"}, {"area"}, {"bright"}, {"mean_gray"}});
  const Exit exit = for_each_frame(options.inputs, [&table](const Frame& frame) {
    const Scores scores = score(frame);
    table.add({frame.name, scores.quality, scores.field_quality, scores.area, scores.bright,
               optional_cell(scores.mean_gray)});
    return Exit::kDone;
  });
  table.print(std::cout, options.format);
  return exit;
}

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
