// quofp snr: signal and noise of frames.
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

Exit run(const Options& options) { return print_measure(options.inputs, snr_measure(), options.format); }

}  // namespace

void add_snr(Commands& commands) {
  commands.add<Options>(
      {.name = "snr",
       .summary = "Signal to noise of frames",
       .examples = {"quofp snr frame.png", "quofp snr lot/*.png --format csv > lot.csv"},
       .details =
           "The signal is what a 3 x 3 smoothing keeps of a frame, the noise what it takes away, each measured in\n"
           "blocks of 16 x 16 pixels.\n"
           "Columns: snr, 10 x variance of the signal / (variance of the noise + 1), the median of all blocks, 255 at\n"
           "most; signal and noise, gray levels in the block with the median: the roots of that quotient's two parts."},
      define, run);
}

}  // namespace quofp
