// quofp selftest: whether the library gives the same bytes on this machine as everywhere.
//
// The test counts and fails the allocations of the library, so its program defines the library's hooks. It is a program
// of its own, quofp-selftest beside the tool: in the tool itself these hooks would serve every other command, too,
// which are to call the library as any program does, and a crash of the library under test would be one of the tool.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "commands.h"

namespace quofp {
namespace {

struct Options {
  bool quiet = false;
};

void define(CLI::App& command, Options& options) {
  command.add_flag("-q,--quiet", options.quiet, "prints the last line alone");
}

Exit run(const Options& options) {
  std::error_code error;
  const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::string program = (own.parent_path() / "quofp-selftest").string();
  std::cout.flush();
  execl(program.c_str(), program.c_str(), options.quiet ? "--quiet" : nullptr, nullptr);
  throw file_failure(program, "cannot be run: " + std::string(std::strerror(errno)));
}

}  // namespace

void add_selftest(Commands& commands) {
  commands.add<Options>(
      {.name = "selftest",
       .summary = "Tells whether the library gives the same bytes on this machine as everywhere",
       .examples = {"quofp selftest --quiet && echo as it should be",
                    "quofp selftest                    # and the hashes"},
       .details = "Makes several hundred calls of every function, extremes and failing allocations included, and\n"
                  "compares one hash for every group of calls with that of the release. The last line is the verdict;\n"
                  "exit code 1 when a hash differs."},
      define, run);
}

}  // namespace quofp
