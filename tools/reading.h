// How the bytes of a file become a frame: its format, and what is done to the pixels on the way.
#pragma once

#include <optional>

#include "formats/raw.h"
#include "frame_io.h"

namespace quofp {

/** A part of a frame, in pixels. */
struct Crop {
  int32_t x = 0;
  int32_t y = 0;
  Size size;
};

/** "8,16,128,96"; nothing when the text is not x, y, width and height of a possible part. */
std::optional<Crop> parse_crop(const std::string& text);

/** How frames are read. */
struct Reading {
  RawLayout raw;  // of files that are neither PNG nor PGM; of no use without a size
  std::optional<Crop> crop;
  bool invert = false;
  bool scale = false;  // spreads the values that occur over 0 to 255, instead of those that the format allows

  bool reads_raw() const { return raw.size.width > 0; }
};

/** @throws Failure when the layout of raw frames does not make sense */
void check(const Reading& reading);

/** Bytes of one frame, not decoded yet. */
struct Encoded {
  std::string name;
  std::vector<uint8_t> bytes;
  bool raw = false;   // of the layout that was given; otherwise a whole file
  bool first = true;  // of its file
};

/** Decodes, crops, scales and inverts a frame. What is not 8-bit gray is converted, and the frame's remark says so.
 *  @throws Failure that names the file and says what is wrong with it, and where */
Frame decode(const Encoded& encoded, const Reading& reading);

/** The same of the bytes of a file that is one frame. */
Frame decode_file(const std::string& name, std::vector<uint8_t> bytes, const Reading& reading);

/** Tells on standard error what the decoder had to convert, if anything. */
void announce(const Frame& frame);

}  // namespace quofp
