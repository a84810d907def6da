// quofp template: the Sp templates of frames as files.
#include <iostream>

#include "commands.h"
#include "inputs.h"
#include "sp_template.h"
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
  add_output(command, options.output, "the template, or a folder for several");
  add_format_option(command, options.format);
}

Exit run(const Options& options) {
  const Outputs outputs(options.inputs, options.output, ".sp");
  Table table({{"file"}, {"width"}, {"height"}, {"bytes"}, {"output"}});
  const Exit exit = for_each_frame(options.inputs, [&](const Frame& frame) {
    const SpTemplate made = template_of(frame);
    if (frame.width + frame.height > kMatchableSides) {
      note(frame.name, "width + height is above 384: the template can be written, but not matched");
    }
    const std::string& output = outputs.path_for(frame.name);
    write_file(output, made.bytes);
    table.add({frame.name, frame.width, frame.height, static_cast<int64_t>(made.bytes.size()), output});
    return Exit::kDone;
  });
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_template(Commands& commands) {
  commands.add<Options>({.name = "template",
                         .summary = "Writes the Sp templates of frames",
                         .examples = {"quofp template frame.png -o frame.sp", "quofp template lot/*.png -o templates/",
                                      "quofp template dump.raw --size 160x160 -o dump.sp"},
                         .details = "Templates are made of frames as they are. sp-template-format.md describes\n"
                                    "their bytes, quofp show draws them, quofp match compares them."},
                        define, run);
}

}  // namespace quofp
