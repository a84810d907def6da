// Primitives, histogram, integral image and half image against their plain definitions.
// Input: function, its arguments, then bytes or a frame.
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "reference/frame.h"
#include "support/drawn.h"

using namespace quo_fuzz;

namespace {

// Any two places in a block, overlapping or not.
void copy_and_set(Input& input) {
  const uint32_t to = input.byte(), from = input.byte();
  const uint8_t value = input.byte();
  const Bytes bytes(input.rest().begin(), input.rest().end());
  if (bytes.empty()) return;
  const auto size = static_cast<uint32_t>(bytes.size()), destination = to % size, source = from % size;
  const uint32_t count = size - std::max(destination, source);
  const auto block = exact(bytes, size);
  Bytes expected = bytes;
  for (uint32_t i = 0; i < count; i++) expected[destination + i] = expected[source + i];
  require(quo_memcpy(&block[destination], &block[source], count) == &block[destination], "the destination comes back");
  require(std::equal(expected.begin(), expected.end(), block.get()), "bytes are copied in their order");
  std::fill_n(expected.begin() + source, count, value);
  require(quo_memset(&block[source], value, count) == &block[source], "the destination comes back");
  require(std::equal(expected.begin(), expected.end(), block.get()), "these bytes are set and no other");
  require(quo_memcpy(nullptr, block.get(), size) == nullptr && quo_memcpy(block.get(), nullptr, size) == nullptr,
          "null");
}

double value_of(uint8_t byte) {
  if (byte >= 250) return std::nan("");
  if (byte >= 240) return byte % 2 == 0 ? std::numeric_limits<double>::infinity() : -0.0;
  return (byte - 120) / 16.0 * std::pow(2.0, byte % 3 * 400);
}

void sort(Input& input) {
  std::vector<double> values;
  for (const uint8_t byte : input.rest().first(std::min<size_t>(input.rest().size(), 200))) {
    values.push_back(value_of(byte));
  }
  std::vector<double> expected = values;
  for (auto first = expected.begin(); first != expected.end();) {
    const auto end = std::find_if(first, expected.end(), [](double value) { return std::isnan(value); });
    std::stable_sort(first, end);
    first = end == expected.end() ? end : end + 1;
  }
  quo_short(values.data(), static_cast<int32_t>(values.size()));
  require(values.empty() || std::memcmp(values.data(), expected.data(), values.size() * sizeof(double)) == 0, "sorted");
  quo_short(nullptr, std::min(number(input), 1));
}

void root(Input& input) {
  const uint32_t high = input.u16();
  const auto x = std::bit_cast<float>(high << 16 | input.u16());
  const float result = quo_sqrt(x), expected = reference::fused_sqrt(x);
  require(
      std::isnan(expected) ? std::isnan(result) : std::bit_cast<uint32_t>(result) == std::bit_cast<uint32_t>(expected),
      "the root is that of its steps");
}

void histogram(Input& input) {
  const int32_t fewer = number(input), wanted = number(input);
  const auto bins = static_cast<uint32_t>(std::clamp(wanted, 0, 1000));
  Image image;
  frame(input, image);
  const int32_t pixels = static_cast<int32_t>(image.pixels.size()), count = std::min(fewer, pixels) - (fewer & 1);
  std::vector<uint32_t> counts(bins, 77), expected(bins);
  for (int32_t i = 0; i < count; i++) {
    const uint8_t pixel = image.pixels[static_cast<size_t>(i)];
    if (pixel < bins) expected[pixel]++;
  }
  const bool counted = CalcHistogram(address(image), count, counts.data(), bins) == 1;
  require(counted == (counts.data() != nullptr) && counts == expected, "every pixel is counted");
  require(CalcHistogram(nullptr, count, counts.data(), bins) == 0 && counts == expected, "nothing is written");
}

// A region of the frame, which may end with the frame's last pixel or be empty.
void integral(Input& input) {
  const int32_t left = number(input), top = number(input), right = number(input), bottom = number(input);
  Image image;
  const Size size = frame(input, image);
  const int32_t x0 = std::clamp(left, 0, image.width), y0 = std::clamp(top, 0, image.height);
  const int32_t columns = std::clamp(right, -1, image.width - x0), rows = std::clamp(bottom, -1, image.height - y0);
  const auto stride = static_cast<size_t>(columns + 1);
  std::vector<uint32_t> sums(stride * static_cast<size_t>(rows + 1), 77), expected(sums.size());
  for (int32_t y = 0; y < rows; y++) {
    uint32_t run = 0;
    for (int32_t x = 0; x < columns; x++) {
      run += image.at(x0 + x, y0 + y);
      const size_t i = static_cast<size_t>(y + 1) * stride + static_cast<size_t>(x + 1);
      expected[i] = expected[i - stride] + run;
    }
  }
  const size_t corner = rows > 0 ? static_cast<size_t>(y0 * image.width + x0) : 0;
  GetGrayIntegralImage(address(image) + corner, sums.data(), columns, rows, size.width);
  require(sums == expected, "the sums are those of the definition");
}

void halve(Input& input) {
  const uint8_t mode = choice(input, 3);
  Image image;
  const Size size = frame(input, image);
  const bool empty = image.width < 2 || image.height < 2;
  Image half = empty ? Image() : Image(image.width / 2, image.height / 2, 77);
  const Image expected = empty ? Image() : reference::half_image(image, mode);
  ZoomImg(address(image), address(half), size.width, size.height, mode);
  require(half == expected, "the half image is that of the definition");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&) = {copy_and_set, sort, root, histogram, integral, halve};
  kTargets[choice(input, std::size(kTargets))](input);
  return 0;
}
