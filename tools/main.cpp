// quofp: looks at frames of a fingerprint sensor through libquoFPAlg.
#include <iostream>
#include <string_view>

#include "command.h"
#include "commands.h"
#include "failure.h"
#include "help.h"
#include "manual.h"
#include "quoFPAlg.h"

namespace {

using namespace quofp;

struct Group {
  const char* name;
  std::vector<void (*)(Commands&)> commands;
};

// In the order of the help.
const Group kGroups[] = {
    {"Make and look at frames", {add_synth, add_guess, add_view, add_sheet, add_report, add_diff}},
    {"Measure frames",
     {add_batch, add_watch, add_info, add_quality, add_orientation, add_snr, add_bubbles, add_defects}},
    {"Clean frames", {add_preprocess, add_op}},
    {"Compare fingers", {add_template, add_show, add_match}},
    {"Calibrate a sensor", {add_gain, add_best}},
    {"The library itself", {add_selftest}},
};

// Asked for by the build alone, so no command of the help: quofp --write-manual FOLDER.
constexpr std::string_view kWriteManual = "--write-manual";

std::string version() {
  return "quofp " + std::to_string(QUO_VERSION) + "\nlibquoFPAlg " + std::to_string(FP_GetVersion());
}

// What is wrong with the command line, and where to look.
Failure misuse(const CLI::App& app, const CLI::ParseError& error) {
  const auto chosen = app.get_subcommands();
  const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
  const bool incomplete = std::string_view(error.what()) == "A subcommand is required";
  const std::string words = !incomplete ? error.what() : chosen.empty() ? "which command?" : "which operator?";
  return usage_failure(words + (incomplete ? " quofp" : "; see quofp") + command + " --help" +
                       (incomplete ? " lists them" : ""));
}

Exit run(int argc, char** argv) {
  CLI::App app("Looks at frames of a fingerprint sensor through libquoFPAlg.", "quofp");
  app.set_help_flag("-h,--help", "prints this help");
  app.set_version_flag("--version", version, "prints the versions of the tool and the library");
  app.formatter(help_format());
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done, 1 the library refused a frame or a check failed, 2 usage, 3 input or output,\n"
      "130 interrupted.\n"
      "Help with examples for a command: quofp COMMAND --help");
  Commands commands(app);
  for (const Group& group : kGroups) {
    for (const auto add : group.commands) add(commands.in_group(group.name));
  }
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
    if (error.get_exit_code() == 0) {
      app.exit(error);  // prints the help
      return Exit::kDone;
    }
    throw misuse(app, error);
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
