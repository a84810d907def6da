// quofp defects: what is broken on a sensor, how much of it an allowance covers, and frames with the lines repaired.
#include <iostream>
#include <optional>

#include "commands.h"
#include "inputs.h"
#include "measures.h"
#include "pictures.h"
#include "quoFPAlg.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  int32_t allowance = 0;
  Output marks;
  Output repaired;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  add_number_option(command, "--allowance", options.allowance, 0, static_cast<int32_t>(kMaxPixels),
                    "largest number of defect pixels with which a frame passes");
  command.add_option("--mark", options.marks.path, "picture of the defects, PNG, or a folder for several")
      ->type_name("PATH");
  command
      .add_option("--repair", options.repaired.path,
                  "the frame with repaired lines if it passes (.png, .pgm or .raw), or a folder for several")
      ->type_name("PATH");
  add_format_option(command, options.format);
}

// Runs the check, which repairs the lines of a frame that passes.
bool passes(Frame& frame, int32_t allowance) {
  uint8_t fail = 0;
  check_result(frame.name, "FP_CheckBadPixelsNum",
               FP_CheckBadPixelsNum(frame.data(), frame.width, frame.height, allowance, &fail));
  return fail == 0;
}

// "23 45", nothing where no line is broken.
Cell places(const uint8_t* broken, int32_t lines) {
  std::string text;
  for (int32_t i = 0; i < lines; i++) {
    if (broken[i] != 0) text += (text.empty() ? "" : " ") + std::to_string(i);
  }
  return text.empty() ? Cell() : Cell(text);
}

std::optional<Outputs> outputs_of(const Options& options, const Output& output) {
  if (output.path.empty()) return std::nullopt;
  return Outputs(options.inputs, output);
}

Exit run(const Options& options) {
  if (!options.marks.path.empty() && options.marks.path == options.repaired.path) {
    throw usage_failure("--mark and --repair need two places");
  }
  const std::optional<Outputs> marks = outputs_of(options, options.marks);
  const std::optional<Outputs> repaired = outputs_of(options, options.repaired);
  Table table({{"file"},
               {"background"},
               {"bad_columns"},
               {"bad_rows"},
               {"line_pixels"},
               {"bad_pixels"},
               {"allowance"},
               {"pass"},
               {"repaired"},
               {"columns_at"},
               {"rows_at"}});
  const Exit exit = for_each_frame(options.inputs, [&](Frame& frame) {
    const Defects defects = find_defects(frame);
    if (marks) draw_defects(frame, defects, fitting_zoom(frame.width, frame.height)).save(marks->path_for(frame.name));
    const bool pass = passes(frame, options.allowance);
    std::optional<std::string> written;
    if (repaired && pass) write_frame(written.emplace(repaired->path_for(frame.name)), frame);
    table.add({frame.name, defects.background, defects.bad_columns, defects.bad_rows, defects.line_pixels,
               defects.pixels - defects.line_pixels, options.allowance, pass, optional_cell(written),
               places(defects.columns.get(), frame.width), places(defects.rows.get(), frame.height)});
    return pass ? Exit::kDone : Exit::kRefused;
  });
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_defects(Commands& commands) {
  commands.add<Options>(
      {.name = "defects",
       .summary = "Broken columns, rows and pixels of a sensor: counts, verdict, picture, repair",
       .examples = {"quofp defects frame.png --mark marks.png",
                    "quofp defects frame.png --allowance 400 --repair repaired.png",
                    "quofp defects lot/*.png --allowance 200 --format csv    # exit code 1 when one of them fails"},
       .details =
           "Columns: background, the gray that the frame is judged against, 255 when no corner looks like\n"
           "background; bad_columns and bad_rows, their number; line_pixels, the pixels on them, one on both counted\n"
           "twice; bad_pixels, four for each dark pixel of a cluster in the half-size frame; pass, whether "
           "line_pixels\n"
           "and bad_pixels each stay within the allowance; repaired, the file written; columns_at and rows_at, which\n"
           "lines are broken, from 0. A dash stands where there is none. A frame that fails is not repaired. In the\n"
           "picture broken lines are blue, bad pixels orange."},
      define, run);
}

}  // namespace quofp
