// quofp quality: how good the library finds frames.
#include <iostream>

#include "commands.h"
#include "inputs.h"
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

constexpr uint8_t kNoMean = 255;  // no mean is this bright: samples of 255 do not count

std::vector<Cell> row_of(const Frame& frame) {
  uint8_t quality = 0, area = 0, bright = 0, mean_gray = kNoMean, field_quality = 0;
  check_result(frame.name, "FP_ImageQuality",
               FP_ImageQuality(frame.data(), frame.width, frame.height, &quality, &area, &bright, &mean_gray));
  check_result(frame.name, "ImageQuality",
               ImageQuality(frame.data(), frame.width, frame.height, &field_quality, nullptr, nullptr, nullptr));
  return {frame.name, quality, field_quality, area, bright, mean_gray == kNoMean ? Cell() : Cell(mean_gray)};
}

Exit run(const Options& options) {
  Table table({{"file"}, {"quality"}, {"field_quality"}, {"area"}, {"bright"}, {"mean_gray"}});
  const Exit exit = for_each_frame(options.inputs, [&table](const Frame& frame) {
    table.add(row_of(frame));
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
