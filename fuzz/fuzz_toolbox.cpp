// The toolbox's operators against their literal form.
// Input: function, failing allocation, arguments, then a frame.
#include "reference/toolbox.h"
#include "support/drawn.h"

using namespace quo_fuzz;

namespace {

constexpr int kTouched = 77;
constexpr int32_t kSlow = 24 * 24;  // pixels of a frame whose every window the reference reads from scratch

// Directions, labels: a second image of the size of the first.
Image beside(const Image& image, uint8_t seed) {
  quo_test::Random random(seed);
  return quo_test::generate(random, image.width, image.height, quo_test::kAllFills[seed % 4]);
}

void orient(Input& input, uint8_t failing) {
  const uint8_t seed = input.byte();
  const int32_t degrees = number(input);
  Image image;
  const Size size = frame(input, image);
  Image directions = beside(image, seed);
  const auto [done, out] = same_twice(failing, [&] {
    Image copy = image;
    const uint32_t code = OrientEnhance(address(copy), address(directions), size.width, size.height);
    return std::tuple(code, copy);
  });
  require((done == 1) == !allocation_failed(), "only memory can fail");
  require(out == (done == 1 ? reference::enhanced(image, directions) : image), "the ridges are the reference's");
  const bool inside = degrees >= 0 && degrees <= 180;
  require(DDIndex(degrees) == (inside ? static_cast<uint32_t>(degrees + 7) / 15 % 12 : 0), "a class has 15 degrees");
}

void segment(Input& input, uint8_t) {
  const int32_t threshold = number(input);
  Image image;
  const Size size = frame(input, image);
  Image expected = image;
  const int32_t left = reference::segment(expected, threshold);
  const int32_t count = FingerprintImageSegment(address(image), size.width, size.height, threshold);
  require(image == expected, "the background is the reference's");
  require(count == left || image.pixels.empty(), "what is left is counted");
}

void binarise(Input& input, uint8_t) {
  const uint8_t threshold = input.byte();
  const int32_t fewer = number(input);
  Image image;
  frame(input, image);
  const int32_t count = std::min(fewer, static_cast<int32_t>(image.pixels.size()));
  Image expected = image;
  for (int32_t i = 0; i < count; i++) {
    uint8_t& pixel = expected.pixels[static_cast<size_t>(i)];
    pixel = pixel > threshold ? 255 : 0;
  }
  require(BinaryThreshold(address(image), count, threshold) == address(image), "the data come back");
  require(image == expected, "as many bytes are binarised");
}

void adaptive(Input& input, uint8_t) {
  const int32_t window = number(input), offset = number(input);
  Image image;
  const Size size = frame(input, image, kSlow);
  Image output(image.width, image.height, kTouched);
  AdaptiveThreshold(address(image), address(output), size.width, size.height, window, offset);
  const int32_t whole = std::clamp(window, 1, std::max(1, std::min(image.width, image.height)));
  require(output == reference::thresholded(image, whole, offset), "the ridges are the reference's");
}

// Half of a window, as 16 bits hold it; more than any frame has becomes kSlow.
int32_t half_size(int32_t window) {
  return std::min(int32_t{static_cast<int16_t>((std::max(window, 1) - 1) / 2)}, kSlow);
}

void stretch(Input& input, uint8_t failing) {
  const uint8_t kind = choice(input, 3);
  const int32_t across = number(input), down = number(input);
  Image image;
  const Size size = frame(input, image, kSlow);
  const Image untouched(image.width, image.height, kTouched);
  const auto [count, out] = same_twice(failing, [&] {
    Image source = image, output = kind == 2 ? image : untouched;
    const uint32_t written =
        kind == 0   ? AreaGrayStretch(address(source), address(output), size.width, size.height, across, down)
        : kind == 1 ? BlockGrayStretch(address(source), address(output), size.width, size.height, across, down)
                    : ValidAreaGrayStretch(address(output), size.width, size.height);
    return std::tuple(written, output);
  });
  Image expected = kind == 2 ? image : untouched;
  uint32_t expected_count = 0;
  if (kind == 0 && half_size(across) >= 0 && half_size(down) >= 0) {
    expected_count = reference::stretch_area(image, expected, half_size(across), half_size(down));
  } else if (kind == 0) {  // no window holds a pixel
    for (size_t i = 0; i < image.pixels.size(); i++) {
      if (image.pixels[i] != 0) expected.pixels[i] = image.pixels[i];
    }
  } else if (kind == 1 && across >= 1 && down >= 1) {
    expected_count = reference::stretch_blocks(image, expected, std::min(across, 1000), std::min(down, 1000));
  } else if (kind == 2 && !allocation_failed()) {
    expected_count = reference::stretch_valid(expected);
  }
  require(count == expected_count && out == expected, "the contrast is the reference's");
}

void balance(Input& input, uint8_t failing) {
  const int32_t across = number(input), down = number(input);
  Image image;
  const Size size = frame(input, image, kSlow);
  const Image untouched(image.width, image.height, kTouched);
  const auto [done, out] = same_twice(failing, [&] {
    Image output = untouched;
    const uint32_t code =
        LocalGrayBalance(address(image), address(output), size.width, static_cast<uint32_t>(size.height), across, down);
    return std::tuple(code, output);
  });
  Image expected = untouched;
  uint32_t expected_done = 0;
  const bool usable = across >= 3 && down >= 3 && half_size(across) >= 1 && half_size(down) >= 1;
  if (usable && !allocation_failed() && image.width >= 3 && image.height >= 3) {
    expected_done = reference::balance(image, expected, half_size(across), half_size(down));
  }
  require(done == expected_done && out == expected, "the balance is the reference's");
}

void median(Input& input, uint8_t failing) {
  const bool in_place = choice(input, 2) == 0;
  Image image;
  const Size size = frame(input, image);
  const Image out = same_twice(failing, [&] {
    Image source = image, output = image;
    MedianFilter(address(in_place ? output : source), address(output), size.width, size.height);
    return output;
  });
  require(out == (in_place && allocation_failed() ? image : reference::median(image)), "medians are the reference's");
}

void erode(Input& input, uint8_t) {
  const int32_t border = number(input);
  const bool marked = choice(input, 2) == 0;
  Image image;
  const Size size = frame(input, image);
  Image output(image.width, image.height, kTouched), expected = output, ignored = output;
  uint32_t count = kTouched;
  MyCrossErode(address(image), marked ? address(output) : nullptr, size.width, size.height, border, &count);
  require(count == reference::erode(image, marked ? expected : ignored, std::clamp(border, 0, 1000)), "the count");
  require(output == expected, "the pixels that stay are the reference's");
}

void grow(Input& input, uint8_t failing) {
  const int32_t seed_x = number(input), seed_y = number(input);
  const uint32_t label = input.u16();
  const uint8_t labelled = input.byte();
  Image image;
  const Size size = frame(input, image);
  Image before = beside(image, labelled);
  for (uint8_t& pixel : before.pixels) pixel = pixel % 16 == 1 ? pixel : 0;
  const reference::Box untouched{kTouched, kTouched, kTouched, kTouched, kTouched};
  const auto [result, box, labels] = same_twice(failing, [&] {
    Image after = before;
    reference::Box b = untouched;
    const uint32_t code = RegionGrowByEightNeighbor(
        seed_x, seed_y, label, address(image), static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height),
        address(after), &b.count, &b.min_x, &b.min_y, &b.max_x, &b.max_y);
    return std::tuple(code, b, after);
  });
  const bool inside = reference::inside(image, seed_x, seed_y) && label % 256 != 0;
  require(result == (inside && !allocation_failed() ? QUO_OK : QUO_NO_MEMORY), "a seed in the image and a label");
  Image expected = before;
  const auto expected_box =
      result == QUO_OK ? reference::grow(image, expected, seed_x, seed_y, static_cast<uint8_t>(label)) : untouched;
  require(box == expected_box && labels == expected, "the region is the reference's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&, uint8_t) = {orient,  segment, binarise, adaptive, stretch,
                                                          balance, median,  erode,    grow};
  const uint8_t target = choice(input, std::size(kTargets)), failing = input.byte();
  kTargets[target](input, failing);
  return 0;
}
