#include "command.h"

namespace quofp {

CLI::App& Commands::declare(const Description& description) {
  CLI::App* const command = app_.add_subcommand(description.name, description.summary);
  descriptions_.push_back(description);
  std::string footer;
  if (!description.details.empty()) footer += description.details + "\n\n";
  footer += "Examples:";
  for (const std::string& example : description.examples) footer += "\n  " + example;
  command->footer(footer)->group(group_);
  return *command;
}

}  // namespace quofp
