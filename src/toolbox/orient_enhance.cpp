#include <algorithm>
#include <bit>
#include <cstddef>

#include "frame/eight_bytes.h"
#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr uint32_t kClasses = 12;
constexpr uint32_t kQuarterTurn = 6;  // classes from a direction to the one at right angles
constexpr int kSites = 7;             // of a class, the pixel itself in the middle
constexpr int32_t kReach = 3;         // pixels from the middle to the outermost site, at most
constexpr int32_t kBrightest = 254;
constexpr int32_t kVector = 16;   // pixels that go through a vector register together
constexpr int32_t kStrip = 1024;  // pixels whose classes are found together

// Weights of the sites, symmetric, with a sum of 7. From the middle outwards the partial sums stay positive, so a pixel
// whose outer sites lie outside the image has a divisor too.
constexpr int16_t kAlong[kSites] = {1, 1, 1, 1, 1, 1, 1};
constexpr int16_t kAcross[kSites] = {-3, -1, 3, 9, 3, -1, -3};

struct Field {
  const uint8_t* directions;
  int32_t width;
  int32_t height;
};

// Distances in memory from a pixel to the sites of a class on one side of it, the outermost first.
struct Line {
  ptrdiff_t sites[kReach];
};

// Pixels side by side of one class, with all their sites inside the image. Sums are 15 * 255 at most in magnitude;
// negative ones give 0 with or without the division.
template <const int16_t (&kWeights)[kSites]>
[[gnu::always_inline]] inline void filter_run(const uint8_t* __restrict pixels, uint8_t* __restrict filtered,
                                              const Line& line, ptrdiff_t count) {
  const uint8_t* const before[kReach] = {pixels + line.sites[0], pixels + line.sites[1], pixels + line.sites[2]};
  const uint8_t* const after[kReach] = {pixels - line.sites[0], pixels - line.sites[1], pixels - line.sites[2]};
  for (ptrdiff_t i = 0; i < count; i++) {
    auto sum = static_cast<int16_t>(kWeights[kReach] * pixels[i]);
    for (int k = 0; k < kReach; k++) sum = static_cast<int16_t>(sum + kWeights[k] * (before[k][i] + after[k][i]));
    const auto mean = static_cast<uint16_t>(static_cast<uint16_t>(std::max<int16_t>(sum, 0)) / 7);
    filtered[i] = static_cast<uint8_t>(std::min<uint16_t>(mean, kBrightest));
  }
}

// The sites of a class of which some are outside the image. The pixel itself stands in for them, with no weight.
struct CutLine {
  ptrdiff_t sites[kSites];
  int16_t weights[kSites];
  uint16_t reciprocal;  // of the sum of weights, times 2^15, and more by 1 at most
};

constexpr uint32_t reciprocal_of(uint32_t total) { return (1U << 15) / total + 1; }

// Whether the reciprocal of every sum of weights divides every sum of pixels exactly.
constexpr bool divides_exactly() {
  constexpr uint32_t kMost = 15;  // weights of sites inside the image together
  for (uint32_t total = 1; total <= kMost; total++) {
    if ((reciprocal_of(total) * total - (1U << 15)) * kMost * 255 >= 1U << 15) return false;
  }
  return true;
}
static_assert(divides_exactly());

// Whether a position moved by a few pixels is one of the `length` from 0 on: below 0 it wraps round to a large number.
bool within(int32_t position, int32_t moved, int32_t length) {
  return static_cast<uint32_t>(position) + static_cast<uint32_t>(moved) < static_cast<uint32_t>(length);
}

template <const int16_t (&kWeights)[kSites]>
CutLine cut_line(const Field& field, int32_t x, int32_t y, uint32_t direction_class) {
  CutLine line{};
  uint32_t total = 0;
  for (int i = 0; i < kSites; i++) {
    const int32_t right = g_DDSite[direction_class][i][0], down = g_DDSite[direction_class][i][1];
    if (!within(x, right, field.width) || !within(y, down, field.height)) continue;
    line.sites[i] = ptrdiff_t{down} * field.width + right;
    line.weights[i] = kWeights[i];
    total += static_cast<uint32_t>(kWeights[i]);
  }
  line.reciprocal = static_cast<uint16_t>(reciprocal_of(total));
  return line;
}

// Pixels of one class, `step` apart in memory, with the same sites inside the image.
[[gnu::always_inline]] inline void filter_cut_run(const uint8_t* __restrict pixels, uint8_t* __restrict filtered,
                                                  const CutLine& line, ptrdiff_t count, ptrdiff_t step) {
  for (ptrdiff_t i = 0; i < count * step; i += step) {
    int16_t sum = 0;
    for (int k = 0; k < kSites; k++) sum = static_cast<int16_t>(sum + line.weights[k] * (pixels + line.sites[k])[i]);
    const auto twice = static_cast<uint16_t>(2 * std::max<int16_t>(sum, 0));
    const auto mean = static_cast<uint16_t>(uint32_t{twice} * line.reciprocal >> 16);
    filtered[i] = static_cast<uint8_t>(std::min<uint16_t>(mean, kBrightest));
  }
}

// The class of a direction, as DDIndex gives it, without branches.
[[gnu::always_inline]] inline uint8_t class_of(uint8_t degrees) {
  return static_cast<uint8_t>(degrees > 172 ? 0 : static_cast<uint16_t>(degrees + 7) / 15);
}

[[gnu::always_inline]] inline void find_classes(const uint8_t* directions, uint8_t* classes, int32_t count,
                                                ptrdiff_t step) {
  if (step != 1) {
    for (int32_t i = 0; i < count; i++) classes[i] = directions[i * step];
    directions = classes;
  }
  for (int32_t i = 0; i < count; i++) classes[i] = class_of(directions[i]);
}

// Columns or rows around whose pixels all sites are inside the image.
struct Inside {
  int32_t first;
  int32_t end;

  explicit Inside(int32_t length) : first(std::min(kReach, length)), end(std::max(first, length - kReach)) {}
  bool any() const { return first < end; }
  int32_t count() const { return end - first; }
};

// Calls `f` for those that are not.
template <typename F>
void for_each_outside(const Inside& inside, int32_t length, const F& f) {
  for (int32_t i = 0; i < length - inside.count(); i++) f(i < inside.first ? i : i + inside.count());
}

// How many bytes from the first of `count` on are the same.
int32_t same_bytes(const uint8_t* bytes, int32_t count) {
  const uint64_t first = bytes[0] * quo::kEightTimes;
  int32_t i = 0;
  for (; i + 8 <= count; i += 8) {
    const uint64_t differences = quo::load_eight(bytes + i) ^ first;
    if (differences != 0) return i + std::countr_zero(differences) / 8;
  }
  while (i < count && bytes[i] == bytes[0]) i++;
  return i;
}

template <const int16_t (&kWeights)[kSites]>
class Filter {
 public:
  Filter(const uint8_t* image, uint8_t* filtered, const Field& field, uint32_t turn)
      : image_(image), filtered_(filtered), field_(field), turn_(turn) {
    for (uint32_t k = 0; k < kClasses; k++) {
      const auto& sites = g_DDSite[turned(k)];
      for (int i = 0; i < kReach; i++) lines_[k].sites[i] = ptrdiff_t{sites[i][1]} * field.width + sites[i][0];
    }
  }

  // From the first pixel with all sites inside the image to the last one in one go: what that gives between these, in
  // the outermost columns, is put right afterwards.
  [[gnu::always_inline]] void filter() const {
    const Inside columns(field_.width), rows(field_.height);
    if (columns.any() && rows.any()) {
      filter_inside(position(columns.first, rows.first), position(columns.end, rows.end - 1));
    }
    for_each_outside(rows, field_.height, [&](int32_t y) { filter_across(columns.first, y, columns.count()); });
    for_each_outside(columns, field_.width, [&](int32_t x) {
      filter_down(x, rows.first, rows.count());
      for_each_outside(rows, field_.height, [&](int32_t y) { filter_down(x, y, 1); });
    });
  }

 private:
  uint32_t turned(uint32_t direction_class) const { return (direction_class + turn_) % kClasses; }
  ptrdiff_t position(int32_t x, int32_t y) const { return static_cast<ptrdiff_t>(y) * field_.width + x; }

  // Calls `f` with the place and the class of all runs of pixels of one class, among `count` pixels `step` apart.
  template <typename F>
  [[gnu::always_inline]] void for_each_run(ptrdiff_t at, ptrdiff_t count, ptrdiff_t step, const F& f) const {
    uint8_t classes[kStrip];
    for (ptrdiff_t start = 0; start < count; start += kStrip) {
      const auto length = static_cast<int32_t>(std::min<ptrdiff_t>(kStrip, count - start));
      find_classes(field_.directions + (at + start * step), classes, length, step);
      for (int32_t i = 0, run = 0; i < length; i += run) {
        run = same_bytes(classes + i, length - i);
        f(start + i, run, classes[i]);
      }
    }
  }

  // Runs are rounded up to whole vectors; the runs that follow put right what that writes into them.
  static ptrdiff_t whole_vectors(ptrdiff_t count, ptrdiff_t most) {
    return std::min((count + kVector - 1) / kVector * kVector, most);
  }

  [[gnu::always_inline]] void filter_inside(ptrdiff_t first, ptrdiff_t end) const {
    for_each_run(first, end - first, 1, [&](ptrdiff_t i, int32_t run, uint8_t k) {
      const ptrdiff_t at = first + i;
      filter_run<kWeights>(image_ + at, filtered_ + at, lines_[k], whole_vectors(run, end - at));
    });
  }

  [[gnu::always_inline]] void filter_across(int32_t x, int32_t y, int32_t count) const {
    const ptrdiff_t row = position(x, y);
    for_each_run(row, count, 1, [&](ptrdiff_t i, int32_t run, uint8_t k) {
      const ptrdiff_t at = row + i;
      const CutLine line = cut_line<kWeights>(field_, x + static_cast<int32_t>(i), y, turned(k));
      filter_cut_run(image_ + at, filtered_ + at, line, whole_vectors(run, count - i), 1);
    });
  }

  [[gnu::noinline]] void filter_down(int32_t x, int32_t y, int32_t count) const {
    const ptrdiff_t column = position(x, y), stride = field_.width;
    for_each_run(column, count, stride, [&](ptrdiff_t i, int32_t run, uint8_t k) {
      const ptrdiff_t at = column + i * stride;
      const CutLine line = cut_line<kWeights>(field_, x, y + static_cast<int32_t>(i), turned(k));
      filter_cut_run(image_ + at, filtered_ + at, line, run, stride);
    });
  }

  const uint8_t* image_;
  uint8_t* filtered_;
  Field field_;
  uint32_t turn_;  // classes from a direction to the one filtered along
  Line lines_[kClasses];
};

QUO_MULTIVERSION void average_along(const uint8_t* image, uint8_t* averaged, const Field& field) {
  Filter<kAlong>(image, averaged, field, 0).filter();
}

QUO_MULTIVERSION void sharpen_across(const uint8_t* averaged, uint8_t* image, const Field& field) {
  Filter<kAcross>(averaged, image, field, kQuarterTurn).filter();
}

}  // namespace

uint32_t OrientEnhance(uint8_t* image, const uint8_t* directions, int32_t width, int32_t height) {
  quo::Scratch<uint8_t> averaged;
  if (!averaged.allocate(quo::pixel_count(width, height))) return 0;
  if (width < 1 || height < 1) return 1;
  const Field field{directions, width, height};
  average_along(image, averaged.get(), field);
  sharpen_across(averaged.get(), image, field);
  return 1;
}
