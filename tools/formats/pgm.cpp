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

void check_value(const std::string& name, const Samples& samples, size_t index, int32_t value) {
  if (value <= samples.maximum) return;
  throw file_failure(name, "PGM: pixel " + place_of(samples, index) + " is above the largest value, " +
                               std::to_string(samples.maximum));
}

void read_binary(const std::string& name, std::span<const uint8_t> bytes, size_t start, Samples& samples) {
  const bool wide = samples.maximum > 255;
  const size_t needed = samples.count() * (wide ? 2 : 1), found = bytes.size() - start;
  if (found != needed) {
    throw file_failure(name, "PGM: " + std::to_string(found) + " bytes of pixels from byte " + std::to_string(start) +
                                 " on, but the header asks for " + std::to_string(needed));
  }
  samples.values.reserve(samples.count());
  const uint8_t* const data = bytes.data() + start;
  for (size_t i = 0; i < samples.count(); i++) {
    samples.values.push_back(wide ? static_cast<uint16_t>(data[2 * i] << 8 | data[2 * i + 1]) : data[i]);
    check_value(name, samples, i, samples.values.back());
  }
}

void read_text(const std::string& name, Scanner& scanner, size_t end, Samples& samples) {
  if (samples.count() > end) {
    throw file_failure(name, "PGM: the file is too short for " + std::to_string(samples.count()) + " pixels");
  }
  for (size_t i = 0; i < samples.count(); i++) {
    const int32_t value = scanner.number("a pixel");
    check_value(name, samples, i, value);
    samples.values.push_back(static_cast<uint16_t>(value));
  }
  scanner.skip_space();
  if (scanner.position() != end) {
    throw file_failure(name,
                       "PGM: more pixels than the header asks for, at byte " + std::to_string(scanner.position()));
  }
}

}  // namespace

bool is_pgm(std::span<const uint8_t> bytes) {
  return bytes.size() >= 3 && bytes[0] == 'P' && (bytes[1] == '2' || bytes[1] == '5') &&
         (is_space(bytes[2]) || bytes[2] == '#');
}

Samples decode_pgm(const std::string& name, std::span<const uint8_t> bytes) {
  Scanner scanner(name, bytes);
  Samples samples;
  samples.width = scanner.number("the width");
  samples.height = scanner.number("the height");
  samples.maximum = scanner.number("the largest value");
  if (!is_frame_size(samples.width, samples.height)) {
    throw file_failure(name, "PGM: a size of " + std::to_string(samples.width) + "x" + std::to_string(samples.height) +
                                 " is not accepted");
  }
  if (samples.maximum < 1 || samples.maximum > 65535) {
    throw file_failure(name, "PGM: a largest value of " + std::to_string(samples.maximum) + " is not allowed");
  }
  if (bytes[1] == '5') {
    scanner.skip_one_space();
    read_binary(name, bytes, scanner.position(), samples);
  } else {
    read_text(name, scanner, bytes.size(), samples);
  }
  return samples;
}

std::vector<uint8_t> encode_pgm(const Frame& frame) {
  const std::string header = "P5\n" + std::to_string(frame.width) + " " + std::to_string(frame.height) + "\n255\n";
  std::vector<uint8_t> bytes(header.begin(), header.end());
  bytes.insert(bytes.end(), frame.pixels.begin(), frame.pixels.end());
  return bytes;
}

}  // namespace quofp
