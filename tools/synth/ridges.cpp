// Orientation first: the field of singular points by Sherlock and Monro (1993), or a plain arch. Then ridges: noise is
// filtered along the orientation, again and again, until a pattern with its own endings and bifurcations has settled,
// the growth of Cappelli, Maio and Maltoni (2000).
#include "synth/ridges.h"

#include <algorithm>
#include <array>

#include "synth/fixed_point.h"

namespace quofp::synth {
namespace {

constexpr int kOrientations = 32;  // filters, evenly over half a turn
constexpr int kGrowthSteps = 14;

enum Stream : uint64_t { kClass, kShape, kGerm };

struct Point {
  int32_t x;
  int32_t y;
};

// Twice the ridge angle turns once around a core and once backwards around a delta.
struct Field {
  Pattern pattern;
  std::vector<Point> cores;
  std::vector<Point> deltas;
  Point centre;

  Angle doubled_angle(int32_t x, int32_t y) const {
    if (pattern == Pattern::kArch) return arch(x, y);
    Angle angle = 0;
    for (const Point& core : cores) angle = static_cast<Angle>(angle + angle_of(x - core.x, y - core.y));
    for (const Point& delta : deltas) angle = static_cast<Angle>(angle - angle_of(x - delta.x, y - delta.y));
    return angle;
  }

 private:
  // Ridges that rise towards the middle and fall again, steepest a little below the centre.
  Angle arch(int32_t x, int32_t y) const {
    const int32_t dx = std::clamp(x - centre.x, -128, 128), dy = std::clamp(y - centre.y - 24, -128, 128);
    const int32_t across = sine(static_cast<Angle>(dx * (kTurn / 256)));
    const int32_t down = cosine(static_cast<Angle>(dy * (kTurn / 512)));
    const int32_t slope = across * down / kUnit * 7 / 6;
    return static_cast<Angle>(2 * angle_of(kUnit, slope));
  }
};

// Places singular points as an 8 mm sensor sees them, in ridge periods from the centre: cores inside, deltas near the
// lower corners.
Field make_field(Random& random, Pattern pattern, Point centre, int32_t period) {
  Field field{pattern, {}, {}, centre};
  const auto at = [&](int32_t tenths_x, int32_t tenths_y) {
    const int32_t jitter_x = random.between(-12, 12), jitter_y = random.between(-12, 12);
    return Point{centre.x + (tenths_x + jitter_x) * period / 10, centre.y + (tenths_y + jitter_y) * period / 10};
  };
  switch (pattern) {
    case Pattern::kArch:
      field.centre = at(0, 0);
      break;
    case Pattern::kLeftLoop:
      field.cores = {at(0, -10)};
      field.deltas = {at(60, 70)};
      break;
    case Pattern::kRightLoop:
      field.cores = {at(0, -10)};
      field.deltas = {at(-60, 70)};
      break;
    case Pattern::kWhorl:
      field.cores = {at(0, -16), at(0, 16)};
      field.deltas = {at(-72, 80), at(72, 80)};
      break;
    case Pattern::kTwinLoop:
      field.cores = {at(-20, -16), at(20, 16)};
      field.deltas = {at(-76, 72), at(76, 80)};
      break;
  }
  return field;
}

// A wave across the ridges under a round window, with no response to a flat field.
class Filter {
 public:
  Filter(int orientation, int32_t period) : radius_(period), row_(padded(2 * period + 1)) {
    const auto along = static_cast<Angle>(orientation * (kTurn / 2) / kOrientations);
    for (int32_t v = -radius_; v <= radius_; v++) {
      for (int32_t u = -radius_; u <= radius_; u++) {
        weights_.push_back(static_cast<int16_t>(window(u, v) * wave(u, v, along, period) / 4096));
      }
      weights_.resize(static_cast<size_t>((v + radius_ + 1) * row_));
    }
    remove_mean(along, period);
  }

  // Rows of weights end with zeros, so that they are whole vectors: twice as fast.
  static constexpr int32_t kVector = 8;
  static int32_t padded(int32_t side) { return (side + kVector - 1) / kVector * kVector; }

  // 1.6 times the amplitude of the wave around the pixel.
  int32_t response(const int16_t* centre, int32_t stride) const {
    int32_t sum = 0;  // at most 1681 weights of 128 (period 20) times levels of 127
    const int16_t* weight = weights_.data();
    for (int32_t v = -radius_; v <= radius_; v++) {
      const int16_t* const row = centre + static_cast<ptrdiff_t>(v) * stride - radius_;
      for (int32_t u = 0; u < row_; u++) sum += weight[u] * row[u];
      weight += row_;
    }
    return static_cast<int32_t>(int64_t{sum} * 8 / 5 * kUnit / matched_);
  }

 private:
  // cos^2 from the centre to the radius, 0 outside, in 1/4096.
  int32_t window(int32_t u, int32_t v) const {
    const auto distance = static_cast<int32_t>(square_root(static_cast<uint64_t>(u * u + v * v) * 65536));  // 1/256
    if (distance >= radius_ * 256) return 0;
    const int32_t c = cosine(static_cast<Angle>(distance * 64 / radius_));
    return c * (c / 8) / kUnit;
  }

  // The wave at (u, v) for ridges that run along the angle, in 1/128.
  static int32_t wave(int32_t u, int32_t v, Angle along, int32_t period) {
    return cosine(phase(u, v, along, period)) / 256;
  }

  static Angle phase(int32_t u, int32_t v, Angle along, int32_t period) {
    const int32_t across = v * cosine(along) - u * sine(along);  // pixels in 1/kUnit
    return static_cast<Angle>(across * 2 / period);
  }

  void remove_mean(Angle along, int32_t period) {
    int32_t sum = 0;
    int32_t inside = 0;
    for (const int16_t weight : weights_) {
      sum += weight;
      inside += weight != 0;
    }
    for (int16_t& weight : weights_) weight = static_cast<int16_t>(weight == 0 ? 0 : weight - sum / inside);
    matched_ = 0;
    for (int32_t v = -radius_; v <= radius_; v++) {
      const int16_t* const row = &weights_[static_cast<size_t>((v + radius_) * row_)];
      for (int32_t u = -radius_; u <= radius_; u++) {
        matched_ += int64_t{row[u + radius_]} * cosine(phase(u, v, along, period));
      }
    }
  }

  int32_t radius_;
  int32_t row_;  // weights in memory
  std::vector<int16_t> weights_;
  int64_t matched_ = 1;  // response to the filter's own wave with amplitude kUnit
};

// Levels with a margin all around, so that a filter never leaves them.
struct Plane {
  int32_t margin;
  int32_t stride;
  std::vector<int16_t> levels;

  Plane(int32_t width, int32_t height, int32_t border)
      : margin(border),
        stride(width + 2 * border),
        levels(static_cast<size_t>(stride) * static_cast<size_t>(height + 2 * border) + Filter::kVector) {}

  int16_t* at(int32_t x, int32_t y) {
    return &levels[static_cast<size_t>(y + margin) * static_cast<size_t>(stride) + static_cast<size_t>(x + margin)];
  }
};

}  // namespace

Pattern pattern_of(uint64_t seed) {
  // Loops are by far the most frequent, then whorls.
  static constexpr Pattern kFrequency[10] = {
      Pattern::kLeftLoop,  Pattern::kLeftLoop, Pattern::kLeftLoop, Pattern::kRightLoop, Pattern::kRightLoop,
      Pattern::kRightLoop, Pattern::kWhorl,    Pattern::kWhorl,    Pattern::kTwinLoop,  Pattern::kArch};
  return kFrequency[Random(seed, kClass).next() % 10];
}

Skin grow_skin(uint64_t seed, Pattern pattern, int32_t width, int32_t height, int32_t period) {
  Random shape(seed, kShape);
  const Field field = make_field(shape, pattern, {width / 2, height / 2}, period);
  std::vector<Filter> filters;
  for (int i = 0; i < kOrientations; i++) filters.emplace_back(i, period);

  Plane levels(width, height, period), next(width, height, period);
  std::vector<uint8_t> orientation;
  Random germ(seed, kGerm);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      *levels.at(x, y) = static_cast<int16_t>(germ.between(-127, 127));
      const int32_t rounded = field.doubled_angle(x, y) + kTurn / kOrientations / 2;
      orientation.push_back(static_cast<uint8_t>(rounded / (kTurn / kOrientations) % kOrientations));
    }
  }
  for (int step = 0; step < kGrowthSteps; step++) {
    size_t i = 0;
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++, i++) {
        const int32_t response = filters[orientation[i]].response(levels.at(x, y), levels.stride);
        *next.at(x, y) = static_cast<int16_t>(std::clamp(response, -127, 127));
      }
    }
    std::swap(levels, next);
  }

  Skin skin{width, height, {}};
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) skin.levels.push_back(static_cast<int8_t>(*levels.at(x, y)));
  }
  return skin;
}

}  // namespace quofp::synth
