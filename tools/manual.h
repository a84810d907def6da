// Man pages and shell completions, made from what the commands say about themselves.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "command.h"

namespace quofp {

/** Writes the man pages, quofp.1 and one for every command, and the completions for bash (quofp.bash), zsh (_quofp) and
 *  fish (quofp.fish) into a folder. @throws Failure */
void write_manual(const CLI::App& app, const std::vector<Description>& commands, const std::string& folder);

}  // namespace quofp
