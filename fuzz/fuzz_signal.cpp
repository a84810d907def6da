// Smoothing, variances, signal to noise, bubbles and erosion against their literal form.
// Input: function, failing allocation, arguments, then a frame.
#include "reference/signal.h"
#include "support/drawn.h"

using namespace quo_fuzz;

namespace {

constexpr int kTouched = 77;

uint32_t unsigned_side(int32_t side) { return static_cast<uint32_t>(side); }

void smooth(Input& input, uint8_t failing) {
  Image image;
  const Size size = frame(input, image);
  const Image untouched(image.width, image.height, kTouched);
  const auto [done, smoothed, rows] = same_twice(failing, [&] {
    Image copy = image, scratch = untouched;
    const uint32_t code = GasssianSmooth(address(copy), address(scratch), size.width, size.height);
    return std::tuple(code, copy, scratch);
  });
  Image expected = image;
  const Image expected_rows = done == 1 ? reference::smooth(expected) : untouched;
  require((done == 1) == !allocation_failed() || image.pixels.empty(), "only memory can fail");
  require(smoothed == expected && rows == expected_rows, "both images are the reference's");
}

void variance(Input& input, uint8_t) {
  const int32_t below = number(input);
  const Bytes bytes(input.rest().begin(), input.rest().end());
  require(Variance(bytes.data(), std::min(below, 0)) == 0 && Variance(nullptr, below) == 0, "of nothing it is 0");
  if (bytes.empty()) return;
  require(Variance(bytes.data(), static_cast<int32_t>(bytes.size())) == reference::variance(bytes), "the reference's");
}

void block_variances(Input& input, uint8_t failing) {
  const auto margin = static_cast<uint8_t>(number(input) / 2);
  const int32_t side = number(input);
  Image image;
  const Size size = frame(input, image);
  const auto [result, across, down, values] = same_twice(failing, [&] {
    double* array = nullptr;
    uint32_t columns = kTouched, rows = kTouched;
    const uint32_t code =
        ImgBlockVariance(address(image), size.width, size.height, margin, side, &array, &columns, &rows);
    return std::tuple(code, columns, rows, taken(array, code == QUO_OK ? size_t{columns} * rows : 0));
  });
  const bool fits =
      side >= 1 && size.width >= side && size.height >= side && size.width > 2 * margin && size.height > 2 * margin;
  require(result == (!fits ? QUO_BAD_GRID : allocation_failed() ? QUO_GRID_NO_MEMORY : QUO_OK), "the code tells why");
  if (result != QUO_OK) {
    require(across == kTouched && down == kTouched, "nothing is written on failure");
    return;
  }
  const auto expected = reference::block_variances(image, margin, side);
  require(static_cast<int32_t>(across) == expected.across && static_cast<int32_t>(down) == expected.down, "the grid");
  require(values == expected.values, "the variances are the reference's");
}

void signal_to_noise(Input& input, uint8_t failing) {
  Image image;
  const Size size = frame(input, image);
  const auto [result, snr, signal, noise] = same_twice(failing, [&] {
    uint8_t ratio = kTouched, wanted = kTouched, unwanted = kTouched;
    const uint32_t code = FP_ComputeSNR(address(image), unsigned_side(size.width), unsigned_side(size.height), &ratio,
                                        &wanted, &unwanted);
    return std::tuple(code, int{ratio}, int{wanted}, int{unwanted});
  });
  const bool too_small = image.width < 16 || image.height < 16;
  require(result == (too_small || allocation_failed() ? QUO_NO_MEMORY : QUO_OK),
          "only memory and small frames can fail");
  const reference::Snr expected =
      result == QUO_OK ? reference::snr(image) : reference::Snr{kTouched, kTouched, kTouched};
  require(reference::Snr{snr, signal, noise} == expected, "the figures are the reference's");
}

void find_bubbles(Input& input, uint8_t failing) {
  Image image;
  const Size size = frame(input, image);
  const auto [result, count, bubbles] = same_twice(failing, [&] {
    uint32_t pixels = kTouched;
    uint8_t* bubble_image = nullptr;
    const uint32_t code = CreateBubbleImage(address(image), unsigned_side(size.width), unsigned_side(size.height),
                                            &pixels, &bubble_image);
    return std::tuple(code, pixels, taken(bubble_image, image.pixels.size()));
  });
  const bool empty = size.width == 0 || size.height == 0, too_small = image.width < 16 || image.height < 16;
  require(result == (!empty && (too_small || allocation_failed()) ? QUO_NO_MEMORY : QUO_OK), "only memory can fail");
  const auto expected = empty || result != QUO_OK ? std::nullopt : reference::bubbles(image);
  require(bubbles == (expected ? expected->pixels : Bytes()), "the bubbles are the reference's");
  require(count == static_cast<uint32_t>(std::count(bubbles.begin(), bubbles.end(), 255)), "each pixel is counted");
}

void erode(Input& input, uint8_t) {
  const int32_t border = number(input);
  Image image;
  const Size size = frame(input, image);
  const Image untouched(image.width, image.height, kTouched);
  Image output = untouched, expected = untouched;
  uint32_t count = kTouched;
  const uint32_t kept = reference::erode(image, expected, std::clamp(border, 1, 1000));
  MyRectErode(address(image), address(output), size.width, size.height, border, &count);
  require(output == expected && count == kept, "the pixels kept are the reference's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&, uint8_t) = {smooth,          variance,     block_variances,
                                                          signal_to_noise, find_bubbles, erode};
  const uint8_t target = choice(input, std::size(kTargets)), failing = input.byte();
  kTargets[target](input, failing);
  return 0;
}
