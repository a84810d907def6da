// What every command has in common: help, manuals, completions, versions, messages and exit codes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tools/tool.h"

using namespace quo_test;
using testing::HasSubstr;

class CommandLine : public Tool {};

TEST_F(CommandLine, AnswersTroubleByItsCodeAndAMessage) {
  EXPECT_EQ(quofp_done("--version"), "quofp 75\nlibquoFPAlg 75\n");
  expect_misuse("", {"", "synth"});
  EXPECT_EQ(expect_exit(2, "nonsense -o a.png").err,
            "quofp: there is no command 'nonsense'; quofp --help lists them\n");
  expect_misuse("synth -o a.png", {"--unknown", "--noise 5000", "--noise x", "--size 160", "--size 0x9",
                                   "--size 160x120x", "--size 20000x20000", "--pattern star", "--format xml"});
  EXPECT_FALSE(exists("a.png"));
  EXPECT_EQ(expect_exit(3, "synth -o missing/a.png").err,
            "quofp: missing/a.png: cannot be written: No such file or directory\n");
  expect_exit(3, "synth -o /dev/full");
  expect_exit(3, "--version >/dev/full");
}

// Help, man pages and completions leave out no command and no option, and bash accepts them.
TEST_F(CommandLine, WritesManPagesAndCompletions) {
  quofp_done("--write-manual manual");
  const std::string help = quofp_done("--help");
  EXPECT_THAT(help, HasSubstr("Exit codes"));
  std::istringstream lines(
      help.substr(help.find("Make and look"), help.find("Exit codes") - help.find("Make and look")));
  std::string commands;
  for (std::string line, name; std::getline(lines, line);) {
    if (line.rfind("  ", 0) != 0 || line[2] == ' ' || !(std::istringstream(line) >> name)) continue;
    commands += name + " ";
    const std::string page = read("manual/quofp-" + name + ".1"), text = quofp_done(name + " --help");
    EXPECT_THAT(page, HasSubstr(".SH EXAMPLES\n.nf\nquofp " + name + " ")) << name;
    EXPECT_THAT(text, HasSubstr("Examples:\n  quofp " + name + " ")) << name;
    EXPECT_THAT(text, testing::Not(HasSubstr(":INT"))) << name;
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
  EXPECT_THAT(commands, testing::AllOf(HasSubstr("synth "), HasSubstr("selftest ")));
  EXPECT_THAT(read("manual/quofp-op.1"), HasSubstr("\\-\\-below\\-mean N"));
  write("ask",
        "source manual/quofp.bash\n"
        "ask() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); _quofp 2>/dev/null; "
        "echo \"${COMPREPLY[*]}\"; }\n"
        "ask quofp qu; ask quofp quality --ski; ask quofp quality --scal; ask quofp op Medi; "
        "ask quofp op AdaptiveThreshold --below; ask quofp info --format cs; "
        "ask quofp sheet --stage bal; ask quofp sheet --sort-by qu\n");
  EXPECT_EQ(quofp_done("--version >/dev/null; bash ask >answers"), "");
  EXPECT_EQ(read("answers"), "quality\n\n--scale-to-8bit\nMedianFilter\n--below-mean\ncsv\nbalance\nquality\n");
}

// The document names every column that there is.
TEST_F(CommandLine, DocumentsEveryColumn) {
  const std::string document = read(QUO_DOCS "/columns.md");
  synth("a.png", "--size 40x40");
  for (const std::string arguments :
       {"info a.png", "quality a.png", "snr a.png", "defects a.png", "bubbles a.png -o c.png",
        "preprocess a.png -o c.png", "sheet a.png -o c.png", "diff a.png a.png", "view a.png -o v",
        "template a.png -o a.sp", "show a.png", "show a.png --runs", "match a.png a.png", "best a.png",
        "gain --mean 90 --settings 5AF340 --target 120 --mode 1", "op MedianFilter a.png -o c.png",
        "watch . --once --settle 0"}) {
    const Rows rows = csv_rows(quofp(arguments + " --format csv").out);
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
