// quofp: looks at frames of a fingerprint sensor through libquoFPAlg.
#include <iostream>
#include <string_view>

#include "command.h"
#include "commands.h"
#include "failure.h"
#include "manual.h"
#include "quoFPAlg.h"

namespace {

using namespace quofp;

// In the order of the help. One group a subsystem, kept apart by blank lines.
constexpr void (*kCommands[])(Commands&) = {
    // Frames
    add_synth,
    add_guess,
    add_info,
    add_batch,
    add_diff,
    add_sheet,
    add_report,
    add_view,
    add_watch,

    // Capture preprocessing
    add_preprocess,

    // Image quality and orientation
    add_quality,
    add_orientation,

    // Sensor defect inspection
    add_defects,

    // Sp templates
    add_template,
    add_show,
    add_match,

    // Signal analysis
    add_snr,
    add_bubbles,

    // Sensor calibration
    add_gain,
    add_best,

    // Image operator toolbox
    add_op,

    // The library itself
    add_selftest,
};

// Asked for by the build alone, so no command of the help: quofp --write-manual FOLDER.
constexpr std::string_view kWriteManual = "--write-manual";

std::string version() {
  return "quofp " + std::to_string(QUO_VERSION) + "\nlibquoFPAlg " + std::to_string(FP_GetVersion());
}

Exit run(int argc, char** argv) {
  CLI::App app("Looks at frames of a fingerprint sensor through libquoFPAlg.", "quofp");
  app.set_version_flag("--version", version);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done, 1 the library refused a frame or a check failed, 2 usage, 3 input or output,\n"
      "130 interrupted.\n"
      "Help with examples for a command: quofp COMMAND --help");
  Commands commands(app);
  for (const auto add : kCommands) add(commands);
  if (argc == 3 && argv[1] == kWriteManual) {
    write_manual(app, commands.descriptions(), argv[2]);
    return Exit::kDone;
  }
  if (argc > 1 && argv[1][0] != '-' && !commands.has(argv[1])) {
    throw usage_failure("there is no command '" + std::string(argv[1]) + "'; quofp --help lists them");
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? Exit::kDone : Exit::kUsage;  // prints the help or what is wrong
  }
  return commands.run_chosen();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Exit exit = run(argc, argv);
    if (!std::cout.flush()) throw file_failure("standard output", "cannot be written");
    return static_cast<int>(exit);
  } catch (const Failure& failure) {
    report(failure);
    return static_cast<int>(failure.exit());
  } catch (const std::exception& failure) {
    report(failure);
    return static_cast<int>(Exit::kInputOutput);
  }
}
