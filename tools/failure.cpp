#include "failure.h"

#include <unistd.h>

#include <iostream>

#include "quoFPAlg.h"
#include "terminal.h"

namespace quofp {

std::string_view result_meaning(uint32_t code) {
  switch (code) {
    case QUO_OK:
      return "success";
    case QUO_NO_MEMORY:
      return "a buffer could not be allocated";
    case QUO_NO_IMAGE:
      return "there is no image";
    case QUO_NO_OUTPUT:
      return "a required pointer is null";
    case QUO_LOW_COVERAGE:
      return "the finger covers less of the sensor than required";
    case QUO_TEMPLATE_MISFIT:
      return "a template cannot be decoded, or two do not fit together";
    default:
      return "unknown result code";
  }
}

Failure usage_failure(const std::string& reason) { return {Exit::kUsage, reason}; }

Failure file_failure(const std::string& file, const std::string& reason) { return {Exit::kInputOutput, file, reason}; }

Failure refusal(const std::string& file, std::string_view function, uint32_t code, std::string_view meaning) {
  const std::string_view words = meaning.empty() ? result_meaning(code) : meaning;
  return {Exit::kRefused, file,
          std::string(function) + " returned " + std::to_string(code) + ": " + std::string(words)};
}

// Each message is written at once, so that those of several threads do not mix.
void report(const std::exception& failure) {
  std::cerr << coloured(STDERR_FILENO, kRedText, "quofp:") + " " + failure.what() + "\n";
}

void note(const std::string& file, const std::string& text) {
  std::cerr << coloured(STDERR_FILENO, kYellowText, "quofp: note:") + " " + file + ": " + text + "\n";
}

}  // namespace quofp
