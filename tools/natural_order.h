// Names in the order in which people count them.
#pragma once

#include <string>

namespace quofp {

/** Whether a comes before b, numbers within the names by their value: finger-9 before finger-10. */
bool in_natural_order(const std::string& a, const std::string& b);

}  // namespace quofp
