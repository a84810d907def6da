#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "preproc/enhance_coef.h"

namespace {

constexpr int32_t kRadius = 3;         // of the neighbourhood that the balance takes means over, pixels
constexpr int32_t kContext = kRadius;  // rows above and below a slice that its means reach

class SlicedBalance {
 public:
  SlicedBalance(uint8_t* frame, int32_t width, int32_t height, uint8_t gain)
      : frame_(frame), width_(width), height_(height), gain_(gain) {}

  [[nodiscard]] bool allocate() { return saved_.allocate(context_bytes()) && parked_.allocate(context_bytes()); }

  // Balances the rows from first to last - 1; the slice that ends at first has been balanced before. Its last rows are
  // put back to their unprocessed values meanwhile, so that the means above this slice are taken over those.
  [[nodiscard]] bool balance(int32_t first, int32_t last) {
    const int32_t above = first == 0 ? 0 : kContext;
    const int32_t below = std::min(kContext, height_ - last);
    if (above > 0) {
      copy(parked_.get(), row(first - kContext));
      copy(row(first - kContext), saved_.get());
    }
    copy(saved_.get(), row(last - kContext));
    const int32_t rows = above + (last - first) + below;
    const uint8_t result =
        LocalGrayBalance_Slice(row(first - above), width_, rows, kRadius, static_cast<uint32_t>(rows), gain_,
                               static_cast<uint8_t>(above), static_cast<uint8_t>(below));
    if (above > 0) copy(row(first - kContext), parked_.get());
    return result == QUO_OK;
  }

 private:
  uint64_t context_bytes() const { return quo::pixel_count(width_, kContext); }
  uint8_t* row(int32_t y) const { return frame_ + static_cast<ptrdiff_t>(y) * width_; }
  void copy(uint8_t* destination, const uint8_t* source) const {
    quo_memcpy(destination, source, static_cast<uint32_t>(context_bytes()));
  }

  uint8_t* frame_;
  int32_t width_;
  int32_t height_;
  uint8_t gain_;
  quo::Scratch<uint8_t> saved_;   // unprocessed values of the rows above the next slice
  quo::Scratch<uint8_t> parked_;  // processed values of those rows, while the next slice is balanced
};

}  // namespace

uint32_t FP_ImageEnhance_Slice(uint8_t* frame, int32_t width, int32_t height, int32_t slice_rows, int32_t target) {
  const uint8_t gain = quo::enhance_gain(frame, width, height, target);
  if (gain < 2) return QUO_OK;
  const int32_t rows = std::max(slice_rows, kContext);
  if (height <= rows) {
    return LocalGrayBalance_Slice(frame, width, height, kRadius, static_cast<uint32_t>(height), gain, 0, 0);
  }
  SlicedBalance slices(frame, width, height, gain);
  if (!slices.allocate()) return QUO_NO_MEMORY;
  int32_t first = 0;
  for (; height - first > rows; first += rows) {
    if (!slices.balance(first, first + rows)) return QUO_NO_MEMORY;
  }
  return slices.balance(first, height) ? QUO_OK : QUO_NO_MEMORY;
}
