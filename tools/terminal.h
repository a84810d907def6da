// Colours, for terminals that want them.
#pragma once

#include <string>

namespace quofp {

/** Whether text on a file descriptor may have colours: on a terminal that is not dumb, unless NO_COLOR is set. */
bool has_colours(int descriptor);

inline constexpr const char* kBold = "1";
inline constexpr const char* kRedText = "1;31";
inline constexpr const char* kYellowText = "33";

/** The text, in a colour if the descriptor has colours. */
std::string coloured(int descriptor, const char* colour, const std::string& text);

}  // namespace quofp
