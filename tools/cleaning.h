// The library's preprocessing as the commands offer it: options, the call, and what it measured.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli_forward.h"
#include "frame_io.h"

namespace quofp {

enum class Stage { kBorders, kStripes, kBalance, kAll };

/** How to clean a frame. */
struct Cleaning {
  Stage stage = Stage::kAll;
  int32_t background = 0;    // 0 to have it estimated
  int32_t min_coverage = 0;  // percent
  uint8_t borders = 0;       // QUO_BORDER_ flags
  int32_t slice_rows = 0;    // 0 balances the whole frame at once
};

/** Declares --borders alone. */
void add_border_option(CLI::App& command, Cleaning& cleaning);

/** Declares --background, --min-coverage and --borders, for commands that run all stages. */
void add_coverage_options(CLI::App& command, Cleaning& cleaning);

/** The same with --stage and --slice-rows. */
void add_cleaning_options(CLI::App& command, Cleaning& cleaning);

/** The names of a sum of flags. */
std::vector<std::string> border_names(uint8_t flags);

/** @throws Failure when the options do not go together */
void check(const Cleaning& cleaning);

/** What the library found out about a frame. */
struct Findings {
  int32_t background;           // used for the coverage
  int32_t coverage;             // percent of blocks with finger
  std::optional<int32_t> gain;  // of the balance; none when it did not run
};

/** Measures a frame before it is cleaned. */
Findings measure(const Frame& frame, const Cleaning& cleaning);

/** Cleans a frame in place and adds to the findings. @throws Failure when the library refuses it */
void clean(Frame& frame, const Cleaning& cleaning, Findings& findings);

}  // namespace quofp
