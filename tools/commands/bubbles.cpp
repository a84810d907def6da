// quofp bubbles: bright blobs above the finger's gray, and where they are.
#include <iostream>

#include "commands.h"
#include "inputs.h"
#include "measures.h"
#include "pictures.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  Output output;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  add_output(command, options.output, "the frame with its bubbles marked, PNG, or a folder for several");
  add_format_option(command, options.format);
}

Exit run(const Options& options) {
  const Outputs outputs(options.inputs, options.output);
  Table table({{"file"}, {"bubble_pixels"}, {"percent"}, {"output"}});
  const Exit exit = for_each_frame(options.inputs, [&](const Frame& frame) {
    const Bubbles bubbles = find_bubbles(frame);
    const std::string& output = outputs.path_for(frame.name);
    draw_bubbles(frame, bubbles, fitting_zoom(frame.width, frame.height)).save(output);
    table.add({frame.name, bubbles.pixels, 100.0 * bubbles.pixels / static_cast<double>(frame.pixels.size()), output});
    return Exit::kDone;
  });
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_bubbles(Commands& commands) {
  commands.add<Options>(
      {.name = "bubbles",
       .summary = "Bright blobs of frames: counts and picture",
       .examples = {"quofp bubbles frame.png -o bubbles.png", "quofp bubbles lot/*.png -o bubbles/ --format csv"},
       .details =
           "Bubbles are pixels at least four standard deviations of a typical block above the mean gray, together\n"
           "with all their neighbours. In the picture they are orange. The uncovered sensor is bright as well: look "
           "at\n"
           "frames that the finger fills.\n"
           "Columns: bubble_pixels, their number; percent, their share of the frame; output, the picture."},
      define, run);
}

}  // namespace quofp
