#include "synth/sensor.h"

#include <algorithm>

#include "synth/fixed_point.h"

namespace quofp::synth {
namespace {

constexpr int32_t kFingerLevel = 122;    // mean gray of the skin
constexpr int32_t kRidgeAmplitude = 55;  // gray levels at full contrast
constexpr int32_t kUnevenness = 14;      // largest slow change of the skin's gray
constexpr int32_t kUnevennessCell = 40;  // pixels
constexpr int32_t kSaturation = 32;      // gray levels by which a saturated background lies above 255
constexpr int32_t kWhole = 65536;        // full opacity of the finger

enum Stream : uint64_t { kOutline = 16, kTone, kBubbles, kColumnOffsets, kLines, kClusters, kNoise };

// Slow change over the frame: random values at the corners of square cells, joined by straight lines.
class Unevenness {
 public:
  Unevenness(uint64_t seed, Size size) : columns_(size.width / kUnevennessCell + 2) {
    Random random(seed, kTone);
    const int32_t rows = size.height / kUnevennessCell + 2;
    for (int32_t i = 0; i < columns_ * rows; i++) corners_.push_back(random.between(-kUnevenness, kUnevenness));
  }

  int32_t at(int32_t x, int32_t y) const {
    const int32_t column = x / kUnevennessCell, row = y / kUnevennessCell;
    const int32_t right = x % kUnevennessCell, down = y % kUnevennessCell;
    const int32_t left = kUnevennessCell - right, up = kUnevennessCell - down;
    const int32_t* const corner = &corners_[static_cast<size_t>(row * columns_ + column)];
    const int32_t above = corner[0] * left + corner[1] * right;
    const int32_t below = corner[columns_] * left + corner[columns_ + 1] * right;
    return (above * up + below * down) / (kUnevennessCell * kUnevennessCell);
  }

 private:
  int32_t columns_;
  std::vector<int32_t> corners_;
};

// How much of each pixel is finger, 0 to kWhole: an oval that covers exactly the wanted share, fading at its rim.
std::vector<int32_t> opacity(const Finger& finger, Size size) {
  Random random(finger.seed, kOutline);
  const int32_t missing = 100 - finger.coverage;
  // A finger that covers little of the sensor comes in from a side or a corner.
  const auto direction = static_cast<Angle>(random.next());
  const int32_t offset = 2 * std::max(0, missing - 25);  // percent of half the frame
  const int32_t half_width = (size.width + 1) / 2, half_height = (size.height + 1) / 2;
  const int32_t cx = half_width + finger.shift_x + cosine(direction) / 256 * offset * half_width / (128 * 100);
  const int32_t cy = half_height + finger.shift_y + sine(direction) / 256 * offset * half_height / (128 * 100);
  const auto tilt = static_cast<Angle>(random.between(-1600, 1600));
  const int32_t slimness = random.between(236, 256);  // width of the oval, in 1/256 of the frame's

  std::vector<int64_t> distance;
  for (int32_t y = 0; y < size.height; y++) {
    for (int32_t x = 0; x < size.width; x++) {
      const int64_t dx = int64_t{x - cx} * cosine(tilt) - int64_t{y - cy} * sine(tilt);
      const int64_t dy = int64_t{x - cx} * sine(tilt) + int64_t{y - cy} * cosine(tilt);
      const int64_t u = dx / half_width * 256 / slimness, v = dy / half_height;  // 1 at the oval, in 1/kUnit
      distance.push_back(u * u + v * v);
    }
  }
  const auto inside = static_cast<size_t>(static_cast<int64_t>(distance.size()) * finger.coverage / 100);
  if (inside == 0) return std::vector<int32_t>(distance.size(), 0);
  if (inside == distance.size()) return std::vector<int32_t>(distance.size(), kWhole);
  std::vector<int64_t> sorted = distance;
  std::nth_element(sorted.begin(), sorted.begin() + static_cast<ptrdiff_t>(inside), sorted.end());
  // A rim pixel is a quarter finger: dark enough to tell from the background.
  const int64_t fade = std::max<int64_t>(sorted[inside] / 8, 1), outside = sorted[inside] + fade / 4;
  std::vector<int32_t> result;
  for (const int64_t d : distance) {
    result.push_back(static_cast<int32_t>(std::clamp<int64_t>((outside - d) * kWhole / fade, 0, kWhole)));
  }
  return result;
}

// Gray levels in 1/256 before noise.
std::vector<int32_t> light(const Finger& finger, const Sensor& sensor) {
  const Size size = sensor.size;
  const int32_t background = (sensor.background == 255 ? 255 + kSaturation : sensor.background) * 256;
  const int32_t margin = kMaxShift + 2 * finger.ridge_period;
  std::vector<int32_t> levels(static_cast<size_t>(size.width) * static_cast<size_t>(size.height), background);
  if (finger.coverage == 0) return levels;
  const Skin skin = grow_skin(finger.seed, finger.pattern.value_or(pattern_of(finger.seed)), size.width + 2 * margin,
                              size.height + 2 * margin, finger.ridge_period);
  const Unevenness tone(finger.seed, size);
  const std::vector<int32_t> finger_opacity = opacity(finger, size);
  for (int32_t y = 0, i = 0; y < size.height; y++) {
    for (int32_t x = 0; x < size.width; x++, i++) {
      const int32_t ridge = skin.at(x + margin - finger.shift_x, y + margin - finger.shift_y);
      const int32_t skin_level =
          (kFingerLevel + tone.at(x, y)) * 256 + ridge * kRidgeAmplitude * 256 / 127 * finger.contrast / 100;
      const int64_t covered = finger_opacity[static_cast<size_t>(i)];
      int32_t& level = levels[static_cast<size_t>(i)];
      level += static_cast<int32_t>((skin_level - level) * covered / kWhole);
    }
  }
  return levels;
}

// Calls `paint(index, distance squared)` for the pixels within `radius` of a point that lie in the frame.
template <typename Paint>
void for_each_near(Size size, int32_t cx, int32_t cy, int32_t radius, Paint paint) {
  for (int32_t y = std::max(0, cy - radius); y <= std::min(size.height - 1, cy + radius); y++) {
    for (int32_t x = std::max(0, cx - radius); x <= std::min(size.width - 1, cx + radius); x++) {
      const int32_t squared = (x - cx) * (x - cx) + (y - cy) * (y - cy);
      if (squared > radius * radius) continue;
      paint(static_cast<size_t>(y) * static_cast<size_t>(size.width) + static_cast<size_t>(x), squared);
    }
  }
}

// Air bubbles lift the finger off: round spots as bright as a saturated sensor.
void add_bubbles(const Finger& finger, Size size, std::vector<int32_t>& levels) {
  Random random(finger.seed, kBubbles);
  for (int32_t bubble = 0; bubble < finger.bubbles; bubble++) {
    const int32_t x = size.width * random.between(20, 80) / 100, y = size.height * random.between(20, 80) / 100;
    const int32_t radius = random.between(2, 5);
    for_each_near(size, x, y, radius,
                  [&](size_t i, int32_t) { levels[i] = std::max(levels[i], (255 + kSaturation) * 256); });
  }
}

void add_stripes(const Sensor& sensor, std::vector<int32_t>& levels) {
  Random random(sensor.seed, kColumnOffsets);
  std::vector<int32_t> offsets;
  for (int32_t x = 0; x < sensor.size.width; x++)
    offsets.push_back(random.between(-sensor.stripes * 256, sensor.stripes * 256));
  for (size_t i = 0; i < levels.size(); i++) levels[i] += offsets[i % offsets.size()];
}

void add_noise(const Sensor& sensor, std::vector<int32_t>& levels) {
  Random random(sensor.noise_seed, kNoise);
  for (int32_t& level : levels) level += static_cast<int32_t>(int64_t{random.normal()} * sensor.noise / 256);
}

Frame digitise(Size size, const std::vector<int32_t>& levels) {
  Frame frame("synthetic frame", size.width, size.height);
  for (size_t i = 0; i < levels.size(); i++) {
    frame.pixels[i] = static_cast<uint8_t>(std::clamp(levels[i] + 128, 0, 255 * 256) / 256);
  }
  return frame;
}

// Indices of broken lines, away from the edges and from each other where there is room.
std::vector<int32_t> broken_lines(Random& random, int32_t lines, int32_t count) {
  std::vector<int32_t> broken;
  for (int32_t attempt = 0; attempt < 100 * count && static_cast<int32_t>(broken.size()) < count; attempt++) {
    const int32_t line = random.between(lines / 8, lines - 1 - lines / 8);
    const auto near = [line](int32_t other) { return std::abs(line - other) < 3; };
    if (std::none_of(broken.begin(), broken.end(), near)) broken.push_back(line);
  }
  return broken;
}

// Broken readout: a whole line reads nearly black or nearly white whatever lies on it.
void break_lines(const Sensor& sensor, Frame& frame) {
  Random random(sensor.seed, kLines);
  const auto stuck = [&random](bool dark) { return static_cast<uint8_t>(random.between(0, 5) + (dark ? 6 : 236)); };
  for (const int32_t y : broken_lines(random, frame.height, sensor.bad_rows)) {
    const bool dark = random.between(0, 3) != 0;
    for (int32_t x = 0; x < frame.width; x++) frame.at(x, y) = stuck(dark);
  }
  for (const int32_t x : broken_lines(random, frame.width, sensor.bad_columns)) {
    const bool dark = random.between(0, 3) != 0;
    for (int32_t y = 0; y < frame.height; y++) frame.at(x, y) = stuck(dark);
  }
}

// Dead spots: neighbouring pixels that read black.
void break_pixels(const Sensor& sensor, Frame& frame) {
  Random random(sensor.seed, kClusters);
  const Size size{frame.width, frame.height};
  for (int32_t cluster = 0; cluster < sensor.bad_clusters; cluster++) {
    int32_t x = random.between(0, size.width - 1), y = random.between(0, size.height - 1);
    for (int32_t pixels = random.between(4, 10); pixels > 0; pixels--) {
      for_each_near(size, x, y, 1,
                    [&](size_t i, int32_t) { frame.pixels[i] = static_cast<uint8_t>(random.between(0, 9)); });
      x = std::clamp(x + random.between(-1, 1), 0, size.width - 1);
      y = std::clamp(y + random.between(-1, 1), 0, size.height - 1);
    }
  }
}

}  // namespace

Frame capture(const Finger& finger, const Sensor& sensor) {
  std::vector<int32_t> levels = light(finger, sensor);
  add_bubbles(finger, sensor.size, levels);
  add_stripes(sensor, levels);
  add_noise(sensor, levels);
  Frame frame = digitise(sensor.size, levels);
  break_lines(sensor, frame);
  break_pixels(sensor, frame);
  return frame;
}

}  // namespace quofp::synth
