// What every command has in common: help, versions, messages and exit codes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tools/tool.h"

using namespace quo_test;
using testing::HasSubstr;

namespace {

std::vector<std::string> commands_in(const std::string& help) {
  std::vector<std::string> names;
  std::istringstream lines(help.substr(help.find("Subcommands:")));
  for (std::string line, name; std::getline(lines, line);) {
    if (line.rfind("  ", 0) == 0 && line[2] != ' ' && std::istringstream(line) >> name) names.push_back(name);
  }
  return names;
}

}  // namespace

class CommandLine : public Tool {};

TEST_F(CommandLine, TellsTheVersionsOfToolAndLibrary) {
  EXPECT_EQ(quofp_done("--version"), "quofp 75\nlibquoFPAlg 75\n");
}

TEST_F(CommandLine, HelpsWithExamplesForEveryCommand) {
  const std::string help = quofp_done("--help");
  EXPECT_THAT(help, HasSubstr("Exit codes"));
  const auto names = commands_in(help);
  ASSERT_THAT(names, testing::Contains("synth"));
  for (const std::string& name : names) {
    const std::string text = quofp_done(name + " --help");
    EXPECT_THAT(text, HasSubstr("Examples:\n  quofp " + name + " ")) << name;
    EXPECT_THAT(text, testing::Not(HasSubstr(":INT"))) << name;
  }
}

TEST_F(CommandLine, AnswersMisuseWithCode2AndAMessage) {
  for (const char* const arguments :
       {"", "nonsense", "synth", "synth -o", "synth -o a.png --unknown", "synth -o a.png --noise 5000",
        "synth -o a.png --noise x", "synth -o a.png --size 160", "synth -o a.png --size 0x9",
        "synth -o a.png --size 160x120x", "synth -o a.png --size 20000x20000", "synth -o a.png --pattern star"}) {
    const Outcome run = quofp(arguments);
    EXPECT_EQ(run.exit, 2) << arguments;
    EXPECT_EQ(run.out, "") << arguments;
    EXPECT_NE(run.err, "") << arguments;
  }
  EXPECT_FALSE(exists("a.png"));
  EXPECT_EQ(quofp("nonsense -o a.png").err, "quofp: there is no command 'nonsense'; quofp --help lists them\n");
}

TEST_F(CommandLine, AnswersAnUnwritableFileWithCode3AndItsName) {
  const Outcome run = quofp("synth -o missing/a.png");
  EXPECT_EQ(run.exit, 3);
  EXPECT_EQ(run.err, "quofp: missing/a.png: cannot be written: No such file or directory\n");
  EXPECT_EQ(quofp("synth -o /dev/full").exit, 3);
  EXPECT_EQ(quofp("--version >/dev/full").exit, 3);
}
