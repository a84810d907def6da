// How a command joins the tool: its name, its options and what it does.
#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "failure.h"

namespace quofp {

/** How a command presents itself in the help. */
struct Description {
  std::string name;
  std::string summary;                // one line, for the list of commands
  std::vector<std::string> examples;  // command lines, each may end in "  # what it does"
  std::string details = {};           // paragraphs after the options, before the examples
};

/** The commands of the tool; the one given on the command line runs once parsing has succeeded. */
class Commands {
 public:
  explicit Commands(CLI::App& app) : app_(app) {}

  /** Adds a command. `define` declares its options, bound to an Options value that lives as long as the tool; `run`
   *  gets it filled in. A Failure thrown by `run` ends the tool with its message and exit code. */
  template <typename Options>
  void add(const Description& description, void (*define)(CLI::App&, Options&), Exit (*run)(const Options&)) {
    auto options = std::make_shared<Options>();
    CLI::App& command = declare(description);
    define(command, *options);
    command.callback([this, options, run] { chosen_ = [options, run] { return run(*options); }; });
  }

  /** The group of the commands that are added next. */
  Commands& in_group(const std::string& group) {
    group_ = group;
    return *this;
  }

  bool has(const std::string& name) const {
    return std::any_of(descriptions_.begin(), descriptions_.end(),
                       [&name](const Description& description) { return description.name == name; });
  }

  /** What the commands say about themselves, in the order of the help. */
  const std::vector<Description>& descriptions() const { return descriptions_; }

  Exit run_chosen() const { return chosen_(); }

 private:
  CLI::App& declare(const Description& description);

  CLI::App& app_;
  std::string group_;
  std::vector<Description> descriptions_;
  std::function<Exit()> chosen_;
};

}  // namespace quofp
