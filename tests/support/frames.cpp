#include "support/frames.h"

#include <algorithm>

namespace quo_test {
namespace {

size_t area(int32_t w, int32_t h) { return static_cast<size_t>(std::max(w, 0)) * static_cast<size_t>(std::max(h, 0)); }

// A triangle wave along a slanted, slightly bent phase: integers only, so the same everywhere.
int ridge(int32_t x, int32_t y, int32_t slope, int32_t bend) {
  const int64_t across = static_cast<int64_t>(x) - y;
  const auto phase = static_cast<int>((int64_t{8} * x + int64_t{slope} * y + bend * (across * across / 64)) & 127);
  return phase < 64 ? 60 + 2 * phase : 60 + 2 * (127 - phase);
}

Image generate_ridges(Random& random, int32_t width, int32_t height) {
  const int32_t slope = random.between(-24, 24), bend = random.between(-3, 3), noise = random.between(0, 24);
  const int32_t cx = random.between(0, width), cy = random.between(0, height);
  const int32_t rx = std::max(1, random.between(width / 4, width)),
                ry = std::max(1, random.between(height / 4, height));
  const int32_t background = random.between(170, 250);
  return Image(width, height, [&](int32_t x, int32_t y) {
    const int64_t dx = int64_t{x - cx} * 256 / rx, dy = int64_t{y - cy} * 256 / ry;
    const bool finger = dx * dx + dy * dy < 65536;
    const int value = finger ? ridge(x, y, slope, bend) : background;
    return std::clamp(value + random.between(-noise, noise) / (finger ? 1 : 4), 0, 255);
  });
}

}  // namespace

Image::Image(int32_t w, int32_t h, uint8_t value) : width(w), height(h), pixels(area(w, h), value) {}

Image::Image(int32_t w, int32_t h, std::initializer_list<int> values) : Image(w, h) {
  std::transform(values.begin(), values.end(), pixels.begin(), [](int v) { return static_cast<uint8_t>(v); });
}

Image::Image(int32_t w, int32_t h, const std::function<int(int32_t, int32_t)>& value) : Image(w, h) {
  for (int32_t y = 0; y < h; y++) {
    for (int32_t x = 0; x < w; x++) at(x, y) = static_cast<uint8_t>(value(x, y));
  }
}

Image generate(Random& random, int32_t width, int32_t height, Fill fill) {
  const uint8_t flat = random.byte();
  if (width <= 0 || height <= 0) return Image(width, height);
  switch (fill) {
    case Fill::kNoise:
      return Image(width, height, [&](int32_t, int32_t) { return random.byte(); });
    case Fill::kDark:
      return Image(width, height, [&](int32_t, int32_t) { return random.byte() & 3; });
    case Fill::kBright:
      return Image(width, height, [&](int32_t, int32_t) { return 252 + (random.byte() & 3); });
    case Fill::kTwoValued:
      return Image(width, height, [&](int32_t, int32_t) { return random.byte() & 1 ? 255 : 0; });
    case Fill::kFlat:
      return Image(width, height, [&](int32_t, int32_t) { return random.chance(2) ? random.byte() : flat; });
    case Fill::kRidges:
      break;
  }
  return generate_ridges(random, width, height);
}

Image stripes(int32_t width, int32_t height, const std::function<int32_t(int32_t, int32_t)>& phase) {
  return Image(width, height, [&](int32_t x, int32_t y) { return phase(x, y) / 4 % 2 == 0 ? 60 : 180; });
}

}  // namespace quo_test
