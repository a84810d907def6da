#include "formats/pgm.h"

#include <algorithm>

namespace quofp {
namespace {

bool is_space(uint8_t byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

// Reads the numbers of a header or of a P2 image: decimal digits between white space and # comments.
class Scanner {
 public:
  Scanner(const std::string& name, std::span<const uint8_t> bytes) : name_(name), bytes_(bytes) {}

  int32_t number(const char* what) {
    skip_space();
    const size_t start = position_;
    int64_t value = 0;
    while (position_ < bytes_.size() && bytes_[position_] >= '0' && bytes_[position_] <= '9') {
      value = std::min<int64_t>(value * 10 + (bytes_[position_++] - '0'), INT32_MAX);
    }
    if (position_ == start) {
      const std::string found = position_ == bytes_.size() ? "the file ends" : "something else stands";
      throw file_failure(name_,
                         "PGM: " + found + " at byte " + std::to_string(start) + ", where " + what + " should be");
    }
    return static_cast<int32_t>(value);
  }

  void skip_space() {
    while (position_ < bytes_.size()) {
      if (bytes_[position_] == '#') {
        while (position_ < bytes_.size() && bytes_[position_] != '\n') position_++;
      } else if (is_space(bytes_[position_])) {
        position_++;
      } else {
        return;
      }
    }
  }

  void skip_one_space() {
    if (position_ < bytes_.size() && is_space(bytes_[position_])) position_++;
  }

  size_t position() const { return position_; }

 private:
  const std::string& name_;
  std::span<const uint8_t> bytes_;
  size_t position_ = 2;  // after the magic number
};

struct Levels {
  int32_t maximum;

  uint8_t to_8_bit(int32_t value) const { return static_cast<uint8_t>((int64_t{value} * 255 + maximum / 2) / maximum); }
};

std::vector<int32_t> binary_values(const std::string& name, std::span<const uint8_t> data, size_t count, bool wide) {
  const size_t needed = wide ? 2 * count : count;
  if (data.size() != needed) {
    throw file_failure(name, "PGM: " + std::to_string(data.size()) + " bytes of pixels, but the header asks for " +
                                 std::to_string(needed));
  }
  std::vector<int32_t> values(count);
  for (size_t i = 0; i < count; i++) values[i] = wide ? data[2 * i] << 8 | data[2 * i + 1] : data[i];
  return values;
}

std::vector<int32_t> text_values(const std::string& name, Scanner& scanner, size_t count, size_t end) {
  if (count > end) throw file_failure(name, "PGM: the file is too short for " + std::to_string(count) + " pixels");
  std::vector<int32_t> values(count);
  for (int32_t& value : values) value = scanner.number("a pixel");
  scanner.skip_space();
  if (scanner.position() != end) throw file_failure(name, "PGM: more pixels than the header asks for");
  return values;
}

}  // namespace

bool is_pgm(std::span<const uint8_t> bytes) {
  return bytes.size() >= 3 && bytes[0] == 'P' && (bytes[1] == '2' || bytes[1] == '5') &&
         (is_space(bytes[2]) || bytes[2] == '#');
}

Frame decode_pgm(const std::string& name, std::span<const uint8_t> bytes) {
  Scanner scanner(name, bytes);
  const int32_t width = scanner.number("the width"), height = scanner.number("the height");
  const Levels levels{scanner.number("the largest value")};
  if (!is_frame_size(width, height)) {
    throw file_failure(name,
                       "PGM: a size of " + std::to_string(width) + "x" + std::to_string(height) + " is not accepted");
  }
  if (levels.maximum < 1 || levels.maximum > 65535) {
    throw file_failure(name, "PGM: a largest value of " + std::to_string(levels.maximum) + " is not allowed");
  }
  Frame frame;
  frame.name = name;
  frame.width = width;
  frame.height = height;
  const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
  std::vector<int32_t> values;
  if (bytes[1] == '5') {
    scanner.skip_one_space();
    values = binary_values(name, bytes.subspan(scanner.position()), count, levels.maximum > 255);
  } else {
    values = text_values(name, scanner, count, bytes.size());
  }
  frame.pixels.resize(count);
  for (size_t i = 0; i < count; i++) {
    if (values[i] > levels.maximum) {
      throw file_failure(name, "PGM: pixel " + std::to_string(i) + " is above the largest value");
    }
    frame.pixels[i] = levels.to_8_bit(values[i]);
  }
  if (levels.maximum != 255) {
    note(name, "values 0 to " + std::to_string(levels.maximum) + " scaled to 0 to 255");
  }
  return frame;
}

std::vector<uint8_t> encode_pgm(const Frame& frame) {
  const std::string header = "P5\n" + std::to_string(frame.width) + " " + std::to_string(frame.height) + "\n255\n";
  std::vector<uint8_t> bytes(header.begin(), header.end());
  bytes.insert(bytes.end(), frame.pixels.begin(), frame.pixels.end());
  return bytes;
}

}  // namespace quofp
