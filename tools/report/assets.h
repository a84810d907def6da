// The text files of the report, as they were when the tool was built.
#pragma once

#include <string_view>

namespace quofp::assets {

extern const std::string_view kPage;  // with {{style}}, {{script}}, {{data}} and {{details}} to fill in
extern const std::string_view kStyle;
extern const std::string_view kScript;

}  // namespace quofp::assets
