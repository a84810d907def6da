// What the report says about one frame: its row in the table, and the stages that are shown when it is opened.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cleaning.h"
#include "failure.h"
#include "frame_io.h"

namespace quofp {

using Json = nlohmann::ordered_json;

/** The row of a frame. What the library refuses leaves its figures out and adds a problem. */
struct FrameRow {
  Json json;
  std::vector<Failure> problems;
};

FrameRow frame_row(const Frame& frame, const Cleaning& cleaning);

/** The row of what could not be read. */
Json unreadable_row(const Failure& problem);

/** Pictures, marks and plots of a frame; what the library refuses is left out. */
Json frame_details(const Frame& frame, const Cleaning& cleaning);

}  // namespace quofp
