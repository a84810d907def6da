// Frames, and files as a whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quofp {

/** A gray frame and the name that messages about it use. */
struct Frame {
  std::string name;
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;
  std::string remark;  // what had to be converted to read it, if anything

  Frame() = default;
  Frame(std::string frame_name, int32_t w, int32_t h, uint8_t value = 0)
      : name(std::move(frame_name)),
        width(w),
        height(h),
        pixels(static_cast<size_t>(w) * static_cast<size_t>(h), value) {}

  uint8_t* data() { return pixels.data(); }
  const uint8_t* data() const { return pixels.data(); }
  uint8_t& at(int32_t x, int32_t y) { return pixels[index(x, y)]; }
  uint8_t at(int32_t x, int32_t y) const { return pixels[index(x, y)]; }

 private:
  size_t index(int32_t x, int32_t y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
  }
};

struct Size {
  int32_t width = 0;
  int32_t height = 0;
  bool operator==(const Size&) const = default;
};

/** Largest frame that is read or made; a sensor frame is a hundredth of it. */
inline constexpr int32_t kMaxSide = 16384;
inline constexpr int64_t kMaxPixels = int64_t{1} << 26;

/** Whether a frame may have this size: at least 1 x 1, at most the bounds above. */
bool is_frame_size(int64_t width, int64_t height);

/** "160x120"; nothing when the text is not two numbers within the bounds. */
std::optional<Size> parse_size(const std::string& text);

/** Whether frames of this name are bare pixels. */
bool is_raw_name(const std::string& path);

/** Writes a frame as PNG, or by the name's ending as PGM (.pgm) or as bare pixels (.raw, .bin). */
void write_frame(const std::string& path, const Frame& frame);

/** Reads a whole file, or with "-" standard input, of at most `limit` bytes. @throws Failure */
std::vector<uint8_t> read_file(const std::string& path, size_t limit = size_t{1} << 28);

/** Writes a whole file. @throws Failure; nothing half written stays behind */
void write_file(const std::string& path, std::span<const uint8_t> bytes);

}  // namespace quofp
