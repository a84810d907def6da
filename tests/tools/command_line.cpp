// What every command has in common: help, versions, messages and exit codes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
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

// Man pages and completions leave out no command and no option, and their readers accept them.
TEST_F(CommandLine, WritesManPagesAndCompletions) {
  quofp_done("--write-manual manual");
  const std::string help = quofp_done("--help");
  for (const std::string& name : commands_in(help)) {
    const std::string page = read("manual/quofp-" + name + ".1");
    EXPECT_THAT(page, HasSubstr(".SH EXAMPLES\n.nf\nquofp " + name + " ")) << name;
    const std::string text = quofp_done(name + " --help");
    for (size_t at = text.find("  --"); at != std::string::npos; at = text.find("  --", at + 1)) {
      const std::string option = text.substr(at + 4, text.find_first_of(" ,\n", at + 4) - at - 4);
      std::string escaped = "\\-\\-";
      for (const char c : option) escaped += c == '-' ? "\\-" : std::string(1, c);
      EXPECT_THAT(page, HasSubstr(escaped)) << name;
      for (const char* const file : {"quofp.bash", "_quofp", "quofp.fish"}) {
        EXPECT_THAT(read(std::string("manual/") + file), HasSubstr(option)) << file << " " << name;
      }
    }
  }
  EXPECT_THAT(read("manual/quofp-op.1"), HasSubstr("\\-\\-below\\-mean N"));
  write("ask",
        "source manual/quofp.bash\n"
        "ask() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); _quofp 2>/dev/null; "
        "echo \"${COMPREPLY[*]}\"; }\n"
        "ask quofp qu; ask quofp quality --ski; ask quofp quality --scal; ask quofp op Medi; "
        "ask quofp op AdaptiveThreshold --below; ask quofp info --format cs\n");
  EXPECT_EQ(quofp_done("--version >/dev/null; bash ask >answers"), "");
  EXPECT_EQ(read("answers"), "quality\n\n--scale-to-8bit\nMedianFilter\n--below-mean\ncsv\n");
}

TEST_F(CommandLine, DocumentsEveryColumn) {
  std::ifstream file(QUO_DOCS "/columns.md");
  const std::string document{std::istreambuf_iterator<char>(file), {}};
  quofp_done("synth -o a.png --size 40x40; cp a.png b.png");
  for (const char* const arguments :
       {"batch a.png", "info a.png --format csv", "quality a.png --format csv", "snr a.png --format csv",
        "defects a.png --allowance 9999 --format csv", "bubbles a.png -o c.png --format csv",
        "preprocess a.png -o c.png --format csv", "sheet a.png -o c.png --format csv", "diff a.png a.png --format csv",
        "view a.png -o v --format csv", "template a.png -o a.sp --format csv", "show a.png --format csv",
        "show a.png --runs --format csv", "match a.png a.png --format csv", "best a.png --format csv",
        "gain --mean 90 --settings 5AF340 --target 120 --mode 1 --format csv",
        "op MedianFilter a.png -o c.png --format csv"}) {
    const auto rows = csv_rows(quofp(arguments).out);
    ASSERT_FALSE(rows.empty()) << arguments;
    for (const std::string& column : rows[0]) EXPECT_THAT(document, HasSubstr("`" + column + "`")) << arguments;
  }
}

TEST_F(CommandLine, HasColoursOnATerminalThatWantsThem) {
  if (!std::filesystem::exists("/usr/bin/script")) GTEST_SKIP() << "needs script(1) for a terminal";
  const auto shown = [&](const std::string& environment) {
    quofp("--version >/dev/null; " + environment +
          " script -qec \"" QUOFP_BINARY " info missing.png\" /dev/null >shown");
    return read("shown");
  };
  EXPECT_THAT(shown("env -u NO_COLOR TERM=xterm"), HasSubstr("\x1B[1;31mquofp:\x1B[0m missing.png"));
  EXPECT_EQ(shown("NO_COLOR=1 TERM=xterm").find('\x1B'), std::string::npos);
  EXPECT_EQ(shown("env -u NO_COLOR TERM=dumb").find('\x1B'), std::string::npos);
}
