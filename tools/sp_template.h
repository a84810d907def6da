// Sp templates as files, and what they hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "reading.h"

namespace quofp {

/** Pixels that a profile leaves out at either end of its line, and the distance of the outer lines from the edges. */
inline constexpr int32_t kProfileMargin = 12;

/** Largest width + height of frames whose templates can be matched. */
inline constexpr int32_t kMatchableSides = 384;

/** An Sp template whose layout fits its length, so that the library reads nothing outside it. The name is that of its
 *  file, or of the frame that it was made of. */
struct SpTemplate {
  std::string name;
  std::vector<uint8_t> bytes;
};

struct Run {
  uint8_t value;
  uint8_t count;
};

/** One line profile, as it is coded and as it is compared. */
struct Profile {
  size_t length = 0;  // as the section says; damaged or foreign templates may code more
  std::vector<Run> runs;
  std::vector<uint8_t> values;
};

/** Where a profile lies in its frame. */
struct ProfileLine {
  bool is_row;
  int32_t position;
  std::string name() const { return (is_row ? "row " : "column ") + std::to_string(position); }
};

/** The line of a section, 0 to 5, of a frame. */
ProfileLine profile_line(size_t section, Size frame);

struct TemplateLayout {
  uint8_t version = 0;
  size_t payload = 0;  // bytes of the profile record without its header
  std::vector<Profile> profiles;

  /** Size of the frame; nothing when the profiles are not three rows and three columns. */
  std::optional<Size> frame_size() const;
};

/** Takes a template apart. @throws Failure that names the file and says at which byte what is wrong */
TemplateLayout parse_template(const std::string& name, const std::vector<uint8_t>& bytes);

/** The template of a frame. @throws Failure when the library refuses it */
SpTemplate template_of(const Frame& frame);

/** Reads a template, or a frame and makes its template; told apart by content. @throws Failure */
SpTemplate read_template(const std::string& file, const Reading& reading);

}  // namespace quofp
