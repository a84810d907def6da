#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr uint32_t kClasses = 12;
constexpr uint32_t kQuarterTurn = 6;  // classes from a direction to the one at right angles
constexpr int kSites = 7;             // of a class, the pixel itself in the middle
constexpr int32_t kReach = 3;         // pixels from the middle to the outermost site, at most
constexpr int32_t kBrightest = 254;
constexpr int32_t kVector = 16;  // pixels that go through a vector register together

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
void filter_run(const uint8_t* __restrict pixels, uint8_t* __restrict filtered, const Line& line, ptrdiff_t count) {
  const uint8_t* const before[kReach] = {pixels + line.sites[0], pixels + line.sites[1], pixels + line.sites[2]};
  const uint8_t* const after[kReach] = {pixels - line.sites[0], pixels - line.sites[1], pixels - line.sites[2]};
  for (ptrdiff_t i = 0; i < count; i++) {
    auto sum = static_cast<int16_t>(kWeights[kReach] * pixels[i]);
    for (int k = 0; k < kReach; k++) sum = static_cast<int16_t>(sum + kWeights[k] * (before[k][i] + after[k][i]));
    const auto mean = static_cast<uint16_t>(static_cast<uint16_t>(std::max<int16_t>(sum, 0)) / 7);
    filtered[i] = static_cast<uint8_t>(std::min<uint16_t>(mean, kBrightest));
  }
}

template <const int16_t (&kWeights)[kSites]>
uint8_t filter_at_edge(const uint8_t* image, const Field& field, int32_t x, int32_t y, uint8_t direction_class) {
  int32_t sum = 0;
  int32_t total = 0;
  for (int i = 0; i < kSites; i++) {
    const int64_t site_x = int64_t{x} + g_DDSite[direction_class][i][0];
    const int64_t site_y = int64_t{y} + g_DDSite[direction_class][i][1];
    if (site_x < 0 || site_x >= field.width || site_y < 0 || site_y >= field.height) continue;
    sum += kWeights[i] * image[static_cast<ptrdiff_t>(site_y * field.width + site_x)];
    total += kWeights[i];
  }
  return static_cast<uint8_t>(std::clamp(sum / total, 0, kBrightest));
}

// The class of every direction, turned, and its line in an image of the given width.
struct Directions {
  uint8_t class_of[256];
  Line lines[kClasses];

  Directions(int32_t width, uint32_t turn) {
    for (int32_t degrees = 0; degrees < 256; degrees++) {
      class_of[degrees] = static_cast<uint8_t>((DDIndex(degrees) + turn) % kClasses);
    }
    for (uint32_t k = 0; k < kClasses; k++) {
      for (int i = 0; i < kReach; i++) lines[k].sites[i] = ptrdiff_t{g_DDSite[k][i][1]} * width + g_DDSite[k][i][0];
    }
  }
};

template <const int16_t (&kWeights)[kSites]>
void filter(const uint8_t* __restrict image, uint8_t* __restrict filtered, const Field& field, uint32_t turn) {
  const Directions directions(field.width, turn);
  for (int32_t y = 0; y < field.height; y++) {
    const ptrdiff_t row = static_cast<ptrdiff_t>(y) * field.width;
    const auto class_at = [&](int32_t x) { return directions.class_of[field.directions[row + x]]; };
    const auto at_edge = [&](int32_t x) {
      filtered[row + x] = filter_at_edge<kWeights>(image, field, x, y, class_at(x));
    };
    const bool row_inside = y >= kReach && y < field.height - kReach;
    const int32_t inside = row_inside ? std::min(kReach, field.width) : field.width;
    const int32_t inside_end = std::max(inside, field.width - kReach);
    for (int32_t x = 0; x < inside; x++) at_edge(x);
    // Runs are rounded up to whole vectors; the runs that follow put right what that writes into them.
    for (int32_t x = inside, end; x < inside_end; x = end) {
      const uint8_t k = class_at(x);
      for (end = x + 1; end < inside_end && class_at(end) == k;) end++;
      const int32_t whole_vectors = (end - x + kVector - 1) / kVector * kVector;
      filter_run<kWeights>(image + row + x, filtered + row + x, directions.lines[k],
                           std::min(whole_vectors, inside_end - x));
    }
    for (int32_t x = inside_end; x < field.width; x++) at_edge(x);
  }
}

}  // namespace

uint32_t OrientEnhance(uint8_t* image, const uint8_t* directions, int32_t width, int32_t height) {
  quo::Scratch<uint8_t> averaged;
  if (!averaged.allocate(quo::pixel_count(width, height))) return 0;
  if (width < 1 || height < 1) return 1;
  const Field field{directions, width, height};
  filter<kAlong>(image, averaged.get(), field, 0);
  filter<kAcross>(averaged.get(), image, field, kQuarterTurn);
  return 1;
}
