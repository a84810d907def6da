#include "frame_io.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "failure.h"
#include "formats/pgm.h"
#include "formats/png.h"

namespace quofp {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::string last_error() { return std::strerror(errno); }

Frame raw_frame(const std::string& name, std::span<const uint8_t> bytes, Size size) {
  Frame frame(name, size.width, size.height);
  frame.pixels.assign(bytes.begin(), bytes.end());
  return frame;
}

size_t pixels_of(Size size) { return static_cast<size_t>(size.width) * static_cast<size_t>(size.height); }

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

Frame read_frame(const std::string& path, std::optional<Size> raw_size) {
  return decode_frame(path, read_file(path), raw_size);
}

Frame decode_frame(const std::string& name, std::span<const uint8_t> bytes, std::optional<Size> raw_size) {
  if (bytes.empty()) throw file_failure(name, "the file is empty");
  if (is_png(bytes)) return decode_png(name, bytes);
  // A graymap is always longer than its pixels: bytes that are just those are raw, whatever they begin with.
  if (raw_size && bytes.size() == pixels_of(*raw_size)) return raw_frame(name, bytes, *raw_size);
  if (is_pgm(bytes)) return decode_pgm(name, bytes);
  if (!raw_size) throw file_failure(name, "neither PNG nor PGM; --size WxH reads it as raw bytes");
  throw file_failure(name, std::to_string(bytes.size()) + " bytes, but a raw frame of " +
                               std::to_string(raw_size->width) + "x" + std::to_string(raw_size->height) + " has " +
                               std::to_string(pixels_of(*raw_size)));
}

void write_frame(const std::string& path, const Frame& frame) {
  const std::string ending = std::filesystem::path(path).extension().string();
  if (ending == ".pgm") {
    write_file(path, encode_pgm(frame));
  } else if (ending == ".raw" || ending == ".bin") {
    write_file(path, frame.pixels);
  } else {
    write_file(path, encode_png(frame));
  }
}

std::vector<uint8_t> read_file(const std::string& path, size_t limit) {
  const File file(std::fopen(path.c_str(), "rb"));
  if (!file) throw file_failure(path, "cannot be opened: " + last_error());
  std::vector<uint8_t> bytes;
  for (size_t got = 1; got != 0;) {
    const size_t used = bytes.size();
    if (used > limit) throw file_failure(path, "longer than " + std::to_string(limit) + " bytes");
    bytes.resize(used + (size_t{1} << 16));
    got = std::fread(bytes.data() + used, 1, bytes.size() - used, file.get());
    bytes.resize(used + got);
  }
  if (std::ferror(file.get()) != 0) throw file_failure(path, "cannot be read: " + last_error());
  return bytes;
}

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
