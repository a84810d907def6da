#include "preproc/background_value.h"

#include <algorithm>
#include <cstddef>

#include "frame/eight_bytes.h"

namespace {

constexpr int32_t kPatch = 8;  // side of a corner patch, pixels
constexpr int32_t kInset = 2;  // from the patch to the edges of the frame
constexpr uint32_t kPatchPixels = kPatch * kPatch;

// Limits of a background patch, on its mean and variance in gray levels.
constexpr uint32_t kBright = 160;        // bright enough on its own
constexpr uint32_t kAboveDarkest = 100;  // or this far above the darkest patch
constexpr uint32_t kFlatVariance = 50;
constexpr double kMargin = 0.93;  // of the mean of the patches: finger is darker than this share of it

// Sums of a patch. Its mean is sum / 64 and its variance (64 * squares - sum * sum) / 64^2, both exact in 32 bits:
static_assert(uint64_t{kPatchPixels} * kPatchPixels * 255 * 255 <= UINT32_MAX);
struct Patch {
  uint32_t sum = 0;
  uint32_t squares = 0;

  bool flat() const { return kPatchPixels * squares - sum * sum < kFlatVariance * kPatchPixels * kPatchPixels; }
};

// The pixels are brought together first: the sums then take whole vectors of them, in 16 bits, which hold the sum of a
// patch.
static_assert(kPatchPixels * 255 <= INT16_MAX);
Patch measure_patch(const uint8_t* top_left, int32_t width) {
  uint8_t pixels[kPatchPixels];
  for (ptrdiff_t y = 0; y < kPatch; y++) quo::store_eight(pixels + y * kPatch, quo::load_eight(top_left + y * width));
  int16_t sum = 0;
  int32_t squares = 0;
  for (const int16_t pixel : pixels) {
    sum = static_cast<int16_t>(sum + pixel);
    squares += pixel * pixel;
  }
  return {static_cast<uint32_t>(sum), static_cast<uint32_t>(squares)};
}

}  // namespace

uint8_t FindBgValue(const uint8_t* image, int32_t width, int32_t height, uint8_t* bg_out) {
  if (width < kInset + kPatch || height < kInset + kPatch) return 0;
  const ptrdiff_t right = width - kInset - kPatch;
  const uint8_t* const top = image + ptrdiff_t{kInset} * width;
  const uint8_t* const bottom = image + (ptrdiff_t{height} - kInset - kPatch) * width;
  const Patch patches[] = {measure_patch(top + kInset, width), measure_patch(top + right, width),
                           measure_patch(bottom + right, width), measure_patch(bottom + kInset, width)};
  uint32_t darkest = UINT32_MAX;
  for (const Patch& patch : patches) darkest = std::min(darkest, patch.sum);

  uint32_t sum = 0;
  uint32_t pixels = 0;
  for (const Patch& patch : patches) {
    const bool bright = patch.sum > kBright * kPatchPixels || patch.sum - darkest > kAboveDarkest * kPatchPixels;
    if (!bright || !patch.flat()) continue;
    sum += patch.sum;
    pixels += kPatchPixels;
  }
  if (pixels == 0) return 0;
  if (bg_out != nullptr) *bg_out = static_cast<uint8_t>(static_cast<double>(sum) / pixels * kMargin);
  return 1;
}

uint32_t FP_GetImageBgValue(const uint8_t* image, int32_t width, int32_t height, uint8_t* bg_out) {
  if (image == nullptr || bg_out == nullptr) return QUO_NO_OUTPUT;
  *bg_out = quo::background_value(image, width, height);
  return QUO_OK;
}
