#include "reading.h"

#include <algorithm>
#include <cstdio>

#include "failure.h"
#include "formats/pgm.h"
#include "formats/png.h"

namespace quofp {
namespace {

constexpr int64_t kLargestRawFrame = int64_t{1} << 28;  // bytes

Samples samples_of(const Encoded& encoded, const Reading& reading) {
  const std::string& name = encoded.name;
  const std::span<const uint8_t> bytes = encoded.bytes;
  if (encoded.raw) return decode_raw(name, bytes, reading.raw);
  if (bytes.empty()) throw file_failure(name, "the file is empty");
  if (is_png(bytes)) return decode_png(name, bytes);
  if (is_pgm(bytes)) return decode_pgm(name, bytes);
  throw file_failure(name, "neither PNG nor PGM; --size WxH reads it as raw bytes");
}

void cut(const std::string& name, const Crop& crop, Samples& samples) {
  if (crop.x > samples.width - crop.size.width || crop.y > samples.height - crop.size.height) {
    throw file_failure(name, "the part " + std::to_string(crop.size.width) + "x" + std::to_string(crop.size.height) +
                                 " at (" + std::to_string(crop.x) + ", " + std::to_string(crop.y) +
                                 ") goes beyond the frame of " + std::to_string(samples.width) + "x" +
                                 std::to_string(samples.height));
  }
  std::vector<uint16_t> values;
  for (int32_t y = crop.y; y < crop.y + crop.size.height; y++) {
    const auto row = samples.values.begin() + ptrdiff_t{y} * samples.width + crop.x;
    values.insert(values.end(), row, row + crop.size.width);
  }
  samples.width = crop.size.width;
  samples.height = crop.size.height;
  samples.values = std::move(values);
}

// What was done to samples that are not 8-bit gray; empty for those that are.
std::string remark_on(const Samples& samples, const Reading& reading, int32_t lowest, int32_t highest) {
  if (samples.maximum == 255 && samples.kind.empty()) return "";
  const std::string range =
      std::to_string(reading.scale ? lowest : 0) + " to " + std::to_string(reading.scale ? highest : samples.maximum);
  std::string text = samples.kind.empty() ? "values " + range + " scaled to 0 to 255"
                     : reading.scale      ? samples.kind + ", values " + range + " scaled to 0 to 255"
                                          : samples.kind + ", converted to 8-bit gray";
  if (!reading.scale && samples.maximum > 255 && highest < samples.maximum / 4) {
    text += "; none is above " + std::to_string(highest) + ", --scale-to-8bit would use the whole range";
  }
  return text;
}

}  // namespace

std::optional<Crop> parse_crop(const std::string& text) {
  Crop crop;
  int used = 0;
  const int read =
      std::sscanf(text.c_str(), "%9d,%9d,%9d,%9d%n", &crop.x, &crop.y, &crop.size.width, &crop.size.height, &used);
  if (read != 4 || static_cast<size_t>(used) != text.size() || crop.x < 0 || crop.y < 0) return std::nullopt;
  return is_frame_size(crop.size.width, crop.size.height) ? std::optional(crop) : std::nullopt;
}

void check(const Reading& reading) {
  const RawLayout& raw = reading.raw;
  if (!reading.reads_raw()) {
    if (raw == RawLayout()) return;
    throw usage_failure("--offset, --stride, --bits, --endian and --count describe raw frames and need --size");
  }
  if (raw.pitch() < raw.row_bytes()) {
    throw usage_failure("--stride " + std::to_string(raw.pitch()) + " is less than the " +
                        std::to_string(raw.row_bytes()) + " bytes of a row");
  }
  if (raw.frame_pitch() > kLargestRawFrame) throw usage_failure("--size and --stride make frames above 256 MiB");
}

Frame decode(const Encoded& encoded, const Reading& reading) {
  Samples samples = samples_of(encoded, reading);
  if (reading.crop) cut(encoded.name, *reading.crop, samples);
  const auto [lowest, highest] = std::minmax_element(samples.values.begin(), samples.values.end());
  const bool scale = reading.scale && *lowest < *highest;
  const uint32_t low = scale ? *lowest : 0U, range = scale ? *highest - low : static_cast<uint32_t>(samples.maximum);
  Frame frame(encoded.name, samples.width, samples.height);
  for (size_t i = 0; i < frame.pixels.size(); i++) {
    const auto gray = static_cast<uint8_t>(((samples.values[i] - low) * 255 + range / 2) / range);
    frame.pixels[i] = reading.invert ? static_cast<uint8_t>(255 - gray) : gray;
  }
  frame.remark = remark_on(samples, reading, *lowest, *highest);
  return frame;
}

Frame decode_file(const std::string& name, std::vector<uint8_t> bytes, const Reading& reading) {
  check(reading);
  const bool raw =
      reading.reads_raw() && !is_png(bytes) && reading.raw.is_one_frame(static_cast<int64_t>(bytes.size()));
  if (raw) bytes.erase(bytes.begin(), bytes.begin() + reading.raw.offset);
  return decode({name, std::move(bytes), raw}, reading);
}

void announce(const Frame& frame) {
  if (!frame.remark.empty()) note(frame.name, frame.remark);
}

}  // namespace quofp
