// The report as one HTML file that refers to nothing outside itself.
#pragma once

#include <string>
#include <vector>

#include "report/frame_report.h"

namespace quofp {

/** JSON that may stand inside a script element. Bytes of file names that are not UTF-8 become U+FFFD. */
std::string embedded_json(const Json& json);

/** The page. `details` holds embedded JSON of the stages of each frame, empty for a frame that has none. */
std::string report_page(const Json& data, const std::vector<std::string>& details);

}  // namespace quofp
