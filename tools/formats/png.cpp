#include "formats/png.h"

#include <png.h>

#include <csetjmp>
#include <cstring>

namespace quofp {
namespace {

// libpng reports errors by a long jump. Everything with a destructor lives in the caller of the functions that it can
// leave that way, so the jump passes over nothing that must be cleaned up.

// Deflate folds at most 258 bytes into two bits.
constexpr size_t kMostUnfolded = 258 * 4;

struct Message {
  char text[160] = {};
};

[[noreturn]] void keep_error(png_structp png, png_const_charp text) {
  auto* const message = static_cast<Message*>(png_get_error_ptr(png));
  std::strncpy(message->text, text, sizeof message->text - 1);
  png_longjmp(png, 1);
}

// An ancillary chunk with a wrong checksum or an odd colour profile does not touch the pixels.
void ignore_warning(png_structp, png_const_charp) {}

struct Source {
  std::span<const uint8_t> bytes;
  size_t position = 0;
};

void take_bytes(png_structp png, png_bytep destination, size_t count) {
  auto* const source = static_cast<Source*>(png_get_io_ptr(png));
  if (count > source->bytes.size() - source->position) png_error(png, "the file ends early");
  std::memcpy(destination, source->bytes.data() + source->position, count);
  source->position += count;
}

class Reader {
 public:
  explicit Reader(std::span<const uint8_t> bytes) : source_{bytes} {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &message_, keep_error, ignore_warning);
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
    if (info_ == nullptr) throw std::bad_alloc();
    png_set_read_fn(png_, &source_, take_bytes);
    png_set_user_limits(png_, kMaxSide, kMaxSide);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }

  // Reads the header and asks for gray, gray-alpha, RGB or RGBA samples of 8 or 16 bits.
  bool read_header() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_read_info(png_, info_);
    depth_ = png_get_bit_depth(png_, info_);
    packed_row_ = png_get_rowbytes(png_, info_);
    colour_ = png_get_color_type(png_, info_);
    if (colour_ == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png_);
    if (colour_ == PNG_COLOR_TYPE_GRAY && depth_ < 8) png_set_expand_gray_1_2_4_to_8(png_);
    passes_ = png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    return true;
  }

  bool read_rows(uint8_t* pixels) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    const size_t stride = png_get_rowbytes(png_, info_);
    for (int pass = 0; pass < passes_; pass++) {
      for (size_t y = 0; y < height(); y++) png_read_row(png_, pixels + y * stride, nullptr);
    }
    png_read_end(png_, nullptr);
    return true;
  }

  size_t width() const { return png_get_image_width(png_, info_); }
  size_t height() const { return png_get_image_height(png_, info_); }
  size_t packed_bytes() const { return packed_row_ * height(); }  // of all rows as the file holds them, unfolded
  size_t channels() const { return png_get_channels(png_, info_); }
  size_t sample_bytes() const { return depth_ == 16 ? 2 : 1; }
  bool is_8_bit_gray() const { return depth_ == 8 && colour_ == PNG_COLOR_TYPE_GRAY; }

  std::string error() const {
    return "PNG: " + std::string(message_.text) + ", at byte " + std::to_string(source_.position) + " of " +
           std::to_string(source_.bytes.size());
  }

  std::string kind() const {
    const char* const name = colour_ == PNG_COLOR_TYPE_PALETTE      ? "palette colour"
                             : colour_ & PNG_COLOR_MASK_COLOR       ? "colour"
                             : colour_ == PNG_COLOR_TYPE_GRAY_ALPHA ? "gray with alpha"
                                                                    : "gray";
    return std::to_string(depth_) + "-bit " + name;
  }

 private:
  Message message_;
  Source source_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  size_t packed_row_ = 0;
  int depth_ = 0;
  int colour_ = 0;
  int passes_ = 1;
};

// Luma of ITU-R BT.709 in 1/256; a gray colour keeps its level exactly.
uint16_t luma(uint32_t red, uint32_t green, uint32_t blue) {
  return static_cast<uint16_t>((54 * red + 183 * green + 19 * blue + 128) >> 8);
}

// Of gray with alpha the gray, of colours the luma.
void take_gray(std::span<const uint8_t> bytes, size_t channels, size_t sample_bytes, std::span<uint16_t> gray) {
  const auto sample = [&](size_t i) -> uint16_t {
    return sample_bytes == 1 ? bytes[i] : static_cast<uint16_t>(bytes[2 * i] << 8 | bytes[2 * i + 1]);
  };
  for (size_t i = 0; i < gray.size(); i++) {
    const size_t first = i * channels;
    gray[i] = channels < 3 ? sample(first) : luma(sample(first), sample(first + 1), sample(first + 2));
  }
}

void append_bytes(png_structp png, png_bytep bytes, size_t count) {
  auto* const sink = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  sink->insert(sink->end(), bytes, bytes + count);
}

bool write_gray(png_structp png, png_infop info, const Frame& frame) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  const auto width = static_cast<uint32_t>(frame.width), height = static_cast<uint32_t>(frame.height);
  png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  for (uint32_t y = 0; y < height; y++) png_write_row(png, frame.data() + size_t{y} * width);
  png_write_end(png, info);
  return true;
}

}  // namespace

bool is_png(std::span<const uint8_t> bytes) { return bytes.size() >= 8 && png_sig_cmp(bytes.data(), 0, 8) == 0; }

Samples decode_png(const std::string& name, std::span<const uint8_t> bytes) {
  Reader reader(bytes);
  if (!reader.read_header()) throw file_failure(name, reader.error());
  const size_t width = reader.width(), height = reader.height(), channels = reader.channels();
  if (!is_frame_size(static_cast<int64_t>(width), static_cast<int64_t>(height))) {
    throw file_failure(name, "PNG: " + std::to_string(width) + "x" + std::to_string(height) + " is too large");
  }
  // A few bytes may claim any size: memory is taken only when the file can unfold to that much.
  if (reader.packed_bytes() / kMostUnfolded > bytes.size()) {
    throw file_failure(name, "PNG: " + std::to_string(bytes.size()) + " bytes are too few for " +
                                 std::to_string(width) + "x" + std::to_string(height));
  }
  std::vector<uint8_t> rows(width * height * channels * reader.sample_bytes());
  if (!reader.read_rows(rows.data())) throw file_failure(name, reader.error());
  Samples samples{static_cast<int32_t>(width), static_cast<int32_t>(height), reader.sample_bytes() == 2 ? 65535 : 255,
                  std::vector<uint16_t>(width * height), reader.is_8_bit_gray() ? "" : reader.kind()};
  take_gray(rows, channels, reader.sample_bytes(), samples.values);
  return samples;
}

std::vector<uint8_t> encode_png(const Frame& frame) {
  Message message;
  std::vector<uint8_t> bytes;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &message, keep_error, ignore_warning);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
  if (info == nullptr) {
    png_destroy_write_struct(&png, nullptr);
    throw std::bad_alloc();
  }
  png_set_write_fn(png, &bytes, append_bytes, nullptr);
  const bool written = write_gray(png, info, frame);
  png_destroy_write_struct(&png, &info);
  if (!written) throw file_failure(frame.name, std::string("PNG: ") + message.text);
  return bytes;
}

}  // namespace quofp
