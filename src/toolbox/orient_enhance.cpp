#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr int kClasses = 12;
constexpr int kQuarterTurn = 6;  // classes from a direction to the one at right angles
constexpr int kSites = 7;        // of a class, the pixel itself in the middle
constexpr int32_t kReach = 3;    // pixels from the middle to the outermost site, at most
constexpr int32_t kBrightest = 254;

// Weights of the sites, symmetric; both sums are 7. Site by site outwards the partial sums stay positive, so a pixel
// whose outer sites lie outside the image has a divisor too.
constexpr int32_t kAlong[kSites] = {1, 1, 1, 1, 1, 1, 1};
constexpr int32_t kAcross[kSites] = {-3, -1, 3, 9, 3, -1, -3};

struct Field {
  const uint8_t* directions;
  int32_t width;
  int32_t height;
};

// Distances in memory from a pixel to the sites on one side of it, the outermost first; the other side mirrors them.
struct Line {
  ptrdiff_t sites[kReach];
};

uint8_t limited(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, kBrightest)); }

// Negative sums give 0 either way, so they are cut off before the division, which is by 7 then without a sign.
template <const int32_t (&kWeights)[kSites]>
uint8_t filter_inside(const uint8_t* pixel, const Line& line) {
  int32_t sum = kWeights[kReach] * *pixel;  // at most 15 * 255 in magnitude
  for (int i = 0; i < kReach; i++) sum += kWeights[i] * (pixel[line.sites[i]] + pixel[-line.sites[i]]);
  return limited(static_cast<int32_t>(static_cast<uint32_t>(std::max(sum, 0)) / 7));
}

template <const int32_t (&kWeights)[kSites]>
uint8_t filter_at_edge(const uint8_t* image, const Field& field, int32_t x, int32_t y, uint32_t direction_class) {
  int32_t sum = 0;
  int32_t total = 0;
  for (int i = 0; i < kSites; i++) {
    const int32_t site_x = x + g_DDSite[direction_class][i][0];
    const int32_t site_y = y + g_DDSite[direction_class][i][1];
    if (site_x < 0 || site_x >= field.width || site_y < 0 || site_y >= field.height) continue;
    sum += kWeights[i] * image[static_cast<ptrdiff_t>(site_y) * field.width + site_x];
    total += kWeights[i];
  }
  return limited(sum / total);
}

template <const int32_t (&kWeights)[kSites]>
void filter(const uint8_t* __restrict image, uint8_t* __restrict filtered, const Field& field, uint32_t turn) {
  uint8_t class_of[256];
  Line lines[kClasses];
  for (int32_t degrees = 0; degrees < 256; degrees++) {
    class_of[degrees] = static_cast<uint8_t>((DDIndex(degrees) + turn) % kClasses);
  }
  for (int k = 0; k < kClasses; k++) {
    for (int i = 0; i < kReach; i++) lines[k].sites[i] = ptrdiff_t{g_DDSite[k][i][1]} * field.width + g_DDSite[k][i][0];
  }
  for (int32_t y = 0; y < field.height; y++) {
    const bool row_inside = y >= kReach && y < field.height - kReach;
    const int32_t left_end = row_inside ? std::min(kReach, field.width) : field.width;
    const int32_t inside_end = std::max(left_end, field.width - kReach);
    const ptrdiff_t row = static_cast<ptrdiff_t>(y) * field.width;
    const auto at_edge = [&](int32_t x) {
      filtered[row + x] = filter_at_edge<kWeights>(image, field, x, y, class_of[field.directions[row + x]]);
    };
    for (int32_t x = 0; x < left_end; x++) at_edge(x);
    for (int32_t x = left_end; x < inside_end; x++) {
      filtered[row + x] = filter_inside<kWeights>(image + row + x, lines[class_of[field.directions[row + x]]]);
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
