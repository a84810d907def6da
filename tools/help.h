// The layout of --help.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>

namespace quofp {

/** Names with their values, descriptions in lines that fit a terminal of 100 columns. */
std::shared_ptr<CLI::FormatterBase> help_format();

}  // namespace quofp
