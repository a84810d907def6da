#include <algorithm>
#include <bit>
#include <cstddef>

#include "frame/eight_bytes.h"
#include "frame/gray.h"
#include "frame/integral_image.h"
#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"
#include "toolbox/settled_pixels.h"
#include "toolbox/textured_cells.h"
#include "toolbox/value_distances.h"
#include "toolbox/window_extremes.h"

// A pixel v is stretched when the distances of the n pixels of its window from it, background left out, add up to more
// than n. Where there are ridges, or noise of a few gray levels, the differences of pixels near by settle that for many
// pixels at once. The few others of a row have their distances added up, no further than until they exceed n.
//
// Where many are left open, the sum s of a window, carried from row to row, settles most: distances add up to |s - nv|
// or more, and to just that for the smallest and the largest pixel of a window. What this leaves open lies mostly in
// areas of a few gray levels, where many pixels of a row have the same value: the distances from common values are
// carried from row to row too.
namespace {

using quo::Extremes;
using quo::GrayFrame;
using quo::Half;
using quo::kWhite;
using quo::TexturedCells;
using quo::ValueDistances;

constexpr int32_t kColumns = quo::kStripColumns;
constexpr int32_t kWidestHalf = 127;  // of a window in a strip; larger windows are read pixel by pixel
constexpr int32_t kVector = 32;       // pixels, of which strips with others after them have a multiple where they can

// Sums over windows of at most so many pixels, and two distances more, are below 2^24 and so exact in single precision.
constexpr int64_t kMostPixels = (1 << 24) / 254 - 2;
static_assert(int64_t{ValueDistances::kMostRows} * (2 * kWidestHalf + 1) <= kMostPixels);

// Numbers of pixels are exact there too, and distances and limits, at most 255 for each pixel, fit in 32 bits.
static_assert((2 * kWidestHalf + 1) * (2 * INT16_MAX + 1) <= 1 << 24);

struct Window {
  int32_t left, right, top, bottom;  // the last column and row included
};

Window window_around(const GrayFrame& frame, const Half& half, int32_t x, int32_t y) {
  return {std::max(x - half.width, 0), x + std::min(half.width, frame.width - 1 - x),  //
          std::max(y - half.height, 0), y + std::min(half.height, frame.height - 1 - y)};
}

// A strip of pixels, and what is known of the columns that their windows reach while these move down the image. Column
// 0 is half a window left of the first pixel.
class Strip {
 public:
  Strip(const GrayFrame& frame, const Half& half, int32_t left)
      : frame_(frame),
        half_(half),
        left_(left),
        count_(count_of(half.width, frame.width - left)),
        columns_(count_ + 2 * half.width),
        inside_(std::max(half.width - left, 0)),
        inside_count_(at_most(columns_, int64_t{frame.width} - left + half.width) - inside_),
        enough_(2 + columns_ / (40 * (1 + half.width / 8))),
        area_((int64_t{2} * half.width + 1) * (int64_t{2} * half.height + 1)),
        few_(static_cast<int32_t>(16 * count_ / (area_ + 16))),
        cells_(inside(), half, half.width - inside_, count_) {
    for (int32_t i = 0; i < columns_; i++) values_[i] = taken_[i] = 0;
    for (uint8_t& settled : settled_) settled = quo::kFlat;
    // As far as the whole vectors reach that the columns are joined in.
    const int32_t reached = std::min(columns_ + kVector, kColumns);
    for (auto& extremes : {lo_, end_}) {
      for (int k = 0; k < 4; k++) {
        for (int32_t i = 0; i < reached; i++) extremes[k][i] = 0;
      }
    }
  }

  int32_t count() const { return count_; }

  // Returns the number of pixels stretched.
  uint32_t stretch(uint8_t* output) {
    uint32_t stretched = 0;
    for (int32_t y = 0; y < frame_.height; y++) {
      if (y % TexturedCells::kSide == 0) cells_.mark_row(y, textured_);
      const Extremes& windows = find_extremes(y);
      settle(y, windows);
      uint8_t* const row = output + static_cast<ptrdiff_t>(y) * frame_.width + left_;
      stretched += quo::write_settled(pixel_row(y), windows, settled_, row, count_);
    }
    return stretched;
  }

 private:
  static constexpr int32_t kMostCommon = 4;  // values whose distances are carried from row to row

  // Pixels of a strip when so many are left: whole vectors, and about as many as the strips after it will have.
  static int32_t count_of(int32_t half_width, int32_t left) {
    const int32_t most = (kColumns - 2 * half_width) / kVector * kVector;
    if (left <= most) return left;
    const int32_t strips = 1 + (left - 1) / most;
    return std::min((left / strips + kVector) / kVector * kVector, most);
  }
  static_assert(kColumns - 2 * kWidestHalf >= kVector);

  // Columns right of an image may be beyond what 32 bits count.
  static int32_t at_most(int32_t limit, int64_t value) { return value < limit ? static_cast<int32_t>(value) : limit; }

  const uint8_t* inside_row(int32_t y) const { return frame_.row(y) + (left_ - half_.width + inside_); }
  const uint8_t* pixel_row(int32_t y) const { return frame_.row(y) + left_; }
  Window window_of(int32_t i, int32_t y) const { return window_around(frame_, half_, left_ + i, y); }

  // The strip's columns that are in the image.
  quo::Columns inside() const { return {inside_row(0), frame_.width, inside_count_, frame_.height}; }

  // In the rows of the windows around row y.
  void look_for_white(int32_t y) {
    const int64_t bottom = std::min(int64_t{y} + half_.height, int64_t{frame_.height} - 1);
    for (int32_t j = std::max(looked_at_ + 1, y - half_.height); j <= bottom; j++) {
      if (quo::has_white(inside_row(j), inside_count_)) last_white_ = j;
      looked_at_ = j;
    }
  }

  // Sums move down row by row. They are not needed now; but beginning anew later adds up all rows of a window, and so
  // they first go along for as many rows.
  void let_sums_wait(int32_t y) {
    if (summed_row_ == y - 1 && idle_rows_++ <= 2 * half_.height) move_sums(y);
  }

  void need_sums(int32_t y) {
    idle_rows_ = 0;
    if (summed_row_ == y - 1) return move_sums(y);
    for (int32_t i = 0; i < columns_; i++) values_[i] = taken_[i] = 0;
    const int64_t bottom = std::min(int64_t{y} + half_.height, int64_t{frame_.height} - 1);
    for (int32_t j = std::max(y - half_.height, 0); j <= bottom; j++) {
      quo::slide_values(inside_row(j), quo::kWhiteRow.pixels, values_ + inside_, inside_count_);
      quo::slide_numbers(inside_row(j), quo::kWhiteRow.pixels, taken_ + inside_, inside_count_);
    }
    summed_row_ = y;
    counted_ = false;
  }

  // To row y from the one above it: takes rows into the sums and out of them, as far as there are any.
  void move_sums(int32_t y) {
    const int64_t entering = int64_t{y} + half_.height;
    const int32_t leaving = y - half_.height - 1;
    const bool enters = entering < frame_.height;
    const uint8_t* const in = enters ? inside_row(static_cast<int32_t>(entering)) : quo::kWhiteRow.pixels;
    const uint8_t* const out = leaving >= 0 ? inside_row(leaving) : quo::kWhiteRow.pixels;
    quo::slide_values(in, out, values_ + inside_, inside_count_);
    summed_row_ = y;
    if (enters && leaving >= 0 && last_white_ < leaving) return;  // as many pixels as before
    quo::slide_numbers(in, out, taken_ + inside_, inside_count_);
    counted_ = false;
  }

  // Of the windows around a row's pixels.
  const Extremes& find_extremes(int32_t y) {
    if (y % 2 == 0) {
      find_column_extremes(y);
      quo::join_column_extremes(extremes_, spare_extremes_, columns_, 2 * half_.width + 1, kColumns);
    }
    return extremes_[y % 2];
  }

  // Of row y and the one below it, in whose windows nearly the same rows are.
  void find_column_extremes(int32_t y) {
    const Window upper = window_of(0, y), lower = window_of(0, std::min(y + 1, frame_.height - 1));
    const uint8_t* const above = lower.top > upper.top ? inside_row(upper.top) : quo::kWhiteRow.pixels;
    const uint8_t* const below = lower.bottom > upper.bottom ? inside_row(lower.bottom) : quo::kWhiteRow.pixels;
    const quo::SharedRows rows{above, inside_row(lower.top), below, frame_.width, upper.bottom - lower.top + 1};
    const int32_t inside_end = inside_ + inside_count_;
    if (inside_ > 0) clear_column_extremes(0, inside_);
    if (inside_end < columns_) clear_column_extremes(inside_end, columns_);
    const Extremes &first = extremes_[0], &second = extremes_[1];
    quo::find_column_extremes(rows, inside_count_, {first.lo + inside_, first.end + inside_},
                              {second.lo + inside_, second.end + inside_});
  }

  // To those of columns outside the image. Whole vectors around them take less time than these alone.
  void clear_column_extremes(int32_t first, int32_t end) {
    static_assert(kColumns % kVector == 0);
    first = first / kVector * kVector;
    end = (end + kVector - 1) / kVector * kVector;
    for (const Extremes found : extremes_) {
      for (int32_t i = first; i < end; i++) found.lo[i] = 255;
      for (int32_t i = first; i < end; i++) found.end[i] = 0;
    }
  }

  void settle(int32_t y, const Extremes& windows) {
    quo::settle(pixel_row(y), reinterpret_cast<const uint8_t*>(textured_), windows, settled_, count_);
    uint16_t open[kColumns];
    int32_t number = list_open(open);
    if (number > 0 || summed_row_ == y - 1) look_for_white(y);
    if (number <= few_) {
      let_sums_wait(y);
    } else {
      need_sums(y);
      settle_by_sums(y, windows, open);
      number = list_open(open);
    }
    settle_others(y, open, number);
  }

  void settle_by_sums(int32_t y, const Extremes& windows, uint16_t* open) {
    const uint8_t* const pixels = pixel_row(y);
    count_pixels();
    if (area_ <= kMostPixels) {
      add_up_columns(values_ + inside_);
      quo::settle_by_sums(pixels, windows, numbers_, sums(), settled_, count_);
    }
    settle_common_values(y);
    int32_t number = list_open(open);
    if (number > count_ / 8 && area_ <= kMostPixels) {
      settle_slopes(pixels);
      number = list_open(open);
    }
    settle_common_values(y, open, number);
  }

  quo::RunningSums sums() const { return {running_, running_ + half_.width + 1, running_ + 2 * half_.width + 1}; }

  // Over the columns before each; sums of columns outside the image are 0.
  template <typename Sum>
  void add_up_columns(const Sum* sums) {
    for (int32_t i = 0; i <= inside_; i++) running_[i] = 0;
    quo::add_up(sums, running_ + inside_ + 1, inside_count_);
    const int32_t inside_end = inside_ + inside_count_;
    for (int32_t i = inside_end + 1; i <= columns_; i++) running_[i] = running_[inside_end];
  }

  void count_pixels() {
    if (counted_) return;
    add_up_columns(taken_ + inside_);
    for (int32_t i = 0; i < count_; i++) {
      numbers_[i] = static_cast<float>(static_cast<int32_t>(sums().last[i] - running_[i]));
    }
    counted_ = true;
  }

  // On smooth slopes many pixels are left open, few of each value: the two sides of a window level out in its sum.
  void settle_slopes(const uint8_t* pixels) {
    float left_numbers[kColumns];
    add_up_columns(taken_ + inside_);
    for (int32_t i = 0; i < count_; i++) {
      left_numbers[i] = static_cast<float>(static_cast<int32_t>(sums().middle[i] - running_[i]));
    }
    add_up_columns(values_ + inside_);
    quo::settle_by_halves(pixels, numbers_, left_numbers, sums(), settled_, count_);
  }

  // Bit 0 of each byte of eight that is not open.
  uint64_t settled_bits(int32_t i) const {
    static_assert(quo::kOpen == 0 && quo::kFlat == 1 && quo::kTextured == 2);
    const uint64_t eight = quo::load_eight(settled_ + i);
    return (eight | eight >> 1) & quo::kEightTimes;
  }

  // Lists the pixels that are open. Returns their number.
  int32_t list_open(uint16_t* open) const {
    static_assert(kColumns % 32 == 0);
    int32_t number = 0;
    for (int32_t i = 0; i < count_; i += 32) {
      const uint64_t settled[] = {settled_bits(i), settled_bits(i + 8), settled_bits(i + 16), settled_bits(i + 24)};
      if ((settled[0] & settled[1] & settled[2] & settled[3]) == quo::kEightTimes) continue;
      for (int32_t k = 0; k < 4; k++) {
        for (uint64_t bits = ~settled[k] & quo::kEightTimes; bits != 0; bits &= bits - 1) {
          open[number++] = static_cast<uint16_t>(i + 8 * k + std::countr_zero(bits) / 8);
        }
      }
    }
    return number;
  }

  // Returns the number of pixels that are open and have this value.
  uint32_t settle_value(int32_t y, ValueDistances& distances) {
    distances.move_to(y, inside(), half_.height);
    add_up_columns(distances.sums());
    return quo::settle_by_distances(pixel_row(y), distances.value(), numbers_, sums(), settled_, count_);
  }

  // The values that were common in the row above.
  void settle_common_values(int32_t y) {
    for (ValueDistances& distances : distances_) {
      if (distances.row() < 0 || distances.row() != y - 1) continue;
      if (settle_value(y, distances) < static_cast<uint32_t>(enough_) / 2) distances.reset(0);
    }
  }

  // Values that have become common.
  void settle_common_values(int32_t y, const uint16_t* open, int32_t open_count) {
    if (2 * half_.height + 1 > ValueDistances::kMostRows || open_count < enough_) return;
    uint16_t counts[256];
    for (uint16_t& count : counts) count = 0;
    for (int32_t k = 0; k < open_count; k++) {
      const uint8_t value = pixel_row(y)[open[k]];
      if (++counts[value] != enough_) continue;
      ValueDistances* const end = distances_ + kMostCommon;
      ValueDistances* const free = std::find_if(distances_, end, [y](const auto& used) { return used.row() != y; });
      if (free == end) return;
      free->reset(value);
      settle_value(y, *free);
    }
  }

  void settle_others(int32_t y, const uint16_t* open, int32_t open_count) {
    const uint8_t* const pixels = pixel_row(y);
    for (int32_t k = 0; k < open_count; k++) {
      const int32_t i = open[k];
      const Window window = window_of(i, y);
      const quo::WindowPixels in_window{frame_.row(window.top) + window.left, frame_.width,
                                        window.right - window.left + 1, window.bottom - window.top + 1,
                                        frame_.row(frame_.height)};
      const bool textured = quo::distances_exceed_number(in_window, pixels[i], last_white_ >= window.top);
      settled_[i] = textured ? quo::kTextured : quo::kFlat;
    }
  }

  const GrayFrame& frame_;
  const Half& half_;
  int32_t left_;  // column of the first pixel
  int32_t count_;
  int32_t columns_;
  int32_t inside_;             // the first column in the image
  int32_t inside_count_;       // columns in the image
  int32_t enough_;             // pixels that make a value common: found by measuring, where both ways take as long
  int64_t area_;               // of a window
  int32_t few_;                // pixels whose distances are added up no slower than the sums of all windows
  int32_t looked_at_ = -1;     // row down to which windows were looked at for background
  int32_t last_white_ = -1;    // row that has some, the last one of these
  int32_t summed_row_ = -2;    // row that the sums are at
  int32_t idle_rows_ = 0;      // rows that they went along without being needed
  bool counted_ = false;       // the pixels of the windows
  uint32_t values_[kColumns];  // sums over the rows of the windows
  uint16_t taken_[kColumns];   // numbers of these pixels, without background
  uint32_t running_[kColumns + 1];
  float numbers_[kColumns];  // of pixels in the windows, without background
  uint8_t lo_[4][kColumns];
  uint8_t end_[4][kColumns];
  Extremes extremes_[2] = {{lo_[0], end_[0]}, {lo_[1], end_[1]}};  // of an even row's windows and the next row's
  Extremes spare_extremes_[2] = {{lo_[2], end_[2]}, {lo_[3], end_[3]}};
  uint32_t textured_[TexturedCells::kMostCells];  // a byte for each pixel
  uint8_t settled_[kColumns];
  TexturedCells cells_;
  ValueDistances distances_[kMostCommon];
};

// With lists and the arrays of kernels, a call stays within 16 KiB of stack.
static_assert(sizeof(Strip) <= 12 * 1024);

uint32_t stretch_strips(const GrayFrame& frame, const Half& half, uint8_t* output) {
  uint32_t stretched = 0;
  for (int32_t left = 0; left < frame.width;) {
    Strip strip(frame, half, left);
    stretched += strip.stretch(output);
    left += strip.count();
  }
  return stretched;
}

// A window read pixel by pixel. Returns whether the pixel is stretched.
bool stretch_pixel(const GrayFrame& frame, const Window& window, uint8_t pixel, uint8_t& output) {
  uint8_t lo = 255, end = 0;
  uint64_t number = 0, distances = 0;
  for (int32_t y = window.top; y <= window.bottom; y++) {
    const uint8_t* const row = frame.row(y);
    for (int32_t x = window.left; x <= window.right; x++) {
      if (row[x] == kWhite) continue;
      lo = std::min(lo, row[x]);
      end = std::max(end, static_cast<uint8_t>(row[x] + 1));
      distances += quo::abs_diff(row[x], pixel);
      number++;
    }
  }
  if (distances <= number) return false;
  output = static_cast<uint8_t>(quo::stretched(pixel, lo, end - 1));
  return true;
}

uint32_t stretch_pixel_by_pixel(const GrayFrame& frame, const Half& half, uint8_t* output) {
  uint32_t stretched = 0;
  for (int32_t y = 0; y < frame.height; y++) {
    for (int32_t x = 0; x < frame.width; x++) {
      const uint8_t pixel = frame.row(y)[x];
      uint8_t& result = output[static_cast<ptrdiff_t>(y) * frame.width + x];
      if (pixel > 0) result = pixel;
      if (pixel == 0 || pixel == kWhite) continue;
      if (stretch_pixel(frame, window_around(frame, half, x, y), pixel, result)) stretched++;
    }
  }
  return stretched;
}

void copy_but_black(const GrayFrame& frame, uint8_t* output) {
  for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(frame.height) * frame.width; i++) {
    if (frame.pixels[i] > 0) output[i] = frame.pixels[i];
  }
}

// Half a window size as a 16-bit value: negative, and the window without pixels, for sizes of 65537 to 131072, and so
// on modulo 131072.
int32_t half_size(int32_t window_size) { return static_cast<int16_t>((std::max(window_size, 1) - 1) / 2); }

}  // namespace

uint32_t AreaGrayStretch(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t window_width,
                         int32_t window_height) {
  if (width < 1 || height < 1) return 0;
  const GrayFrame frame{source, width, height};
  const Half half{std::min(half_size(window_width), width - 1), std::min(half_size(window_height), height - 1)};
  if (half.width < 0 || half.height < 0) {
    copy_but_black(frame, output);
    return 0;
  }
  if (half.width > kWidestHalf) return stretch_pixel_by_pixel(frame, half, output);
  return stretch_strips(frame, half, output);
}
