// quofp preprocess: frames as the library cleans them.
#include <iostream>

#include "cleaning.h"
#include "commands.h"
#include "inputs.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  Output output;
  Cleaning cleaning;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  add_output(command, options.output, "the cleaned frame (.png, .pgm or .raw), or a folder for several");
  add_cleaning_options(command, options.cleaning);
  add_format_option(command, options.format);
}

Exit run(const Options& options) {
  const Cleaning& cleaning = options.cleaning;
  check(cleaning);
  const Outputs outputs(options.inputs, options.output);
  Table table({{"file"}, {"background"}, {"coverage"}, {"gain"}, {"output"}});
  const Exit exit = for_each_frame(options.inputs, [&](Frame& frame) {
    Findings findings = measure(frame, cleaning);
    std::optional<std::string> written;
    const Exit done = attempt([&] {
      clean(frame, cleaning, findings);
      const std::string& output = outputs.path_for(frame.name);
      write_frame(output, frame);
      written = output;
      return Exit::kDone;
    });
    table.add(
        {frame.name, findings.background, findings.coverage, optional_cell(findings.gain), optional_cell(written)});
    return done;
  });
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_preprocess(Commands& commands) {
  commands.add<Options>(
      {.name = "preprocess",
       .summary = "Cleans frames: borders, stripes, local gray balance",
       .examples = {"quofp preprocess frame.png -o clean.png",
                    "quofp preprocess frame.png -o clean.png --borders top,left --min-coverage 60",
                    "quofp preprocess dump.raw --size 160x160 -o clean.png --stage stripes",
                    "quofp preprocess lot/*.png -o cleaned/ --format csv"},
       .details =
           "Columns: background, the gray below which a block is finger; coverage, percent of blocks with finger;\n"
           "gain, contrast gain of the balance; output, the file written. A dash stands for what the library refused."},
      define, run);
}

}  // namespace quofp
