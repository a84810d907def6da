#include "terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace quofp {

bool has_colours(int descriptor) {
  const char* const unwanted = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  if (unwanted != nullptr && *unwanted != '\0') return false;
  return isatty(descriptor) == 1 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::string coloured(int descriptor, const char* colour, const std::string& text) {
  if (!has_colours(descriptor)) return text;
  std::string result = "\x1B[";
  return result.append(colour).append("m").append(text).append("\x1B[0m");
}

}  // namespace quofp
