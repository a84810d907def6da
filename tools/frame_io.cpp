#include "frame_io.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "byte_source.h"
#include "failure.h"
#include "formats/pgm.h"
#include "formats/png.h"

namespace quofp {
namespace {

std::string last_error() { return std::strerror(errno); }

}  // namespace

bool is_frame_size(int64_t width, int64_t height) {
  return width >= 1 && height >= 1 && width <= kMaxSide && height <= kMaxSide && width * height <= kMaxPixels;
}

std::optional<Size> parse_size(const std::string& text) {
  Size size;
  const char* const end = text.data() + text.size();
  const auto width = std::from_chars(text.data(), end, size.width);
  if (width.ec != std::errc() || width.ptr == end || (*width.ptr != 'x' && *width.ptr != 'X')) return std::nullopt;
  const auto height = std::from_chars(width.ptr + 1, end, size.height);
  if (height.ec != std::errc() || height.ptr != end || !is_frame_size(size.width, size.height)) return std::nullopt;
  return size;
}

bool is_raw_name(const std::string& path) {
  const std::string ending = std::filesystem::path(path).extension().string();
  return ending == ".raw" || ending == ".bin";
}

void write_frame(const std::string& path, const Frame& frame) {
  if (std::filesystem::path(path).extension() == ".pgm") {
    write_file(path, encode_pgm(frame));
  } else if (is_raw_name(path)) {
    write_file(path, frame.pixels);
  } else {
    write_file(path, encode_png(frame));
  }
}

std::vector<uint8_t> read_file(const std::string& path, size_t limit) { return ByteSource(path).rest(limit); }

void write_file(const std::string& path, std::span<const uint8_t> bytes) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) throw file_failure(path, "cannot be written: " + last_error());
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const std::string reason = last_error();
  if (std::fclose(file) == 0 && written) return;
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) std::filesystem::remove(path, ignored);
  throw file_failure(path, "cannot be written: " + reason);
}

}  // namespace quofp
