#include "size_guess.h"

#include <algorithm>
#include <cmath>

namespace quofp {
namespace {

constexpr size_t kSample = size_t{1} << 17;  // values that correlations are taken over
constexpr size_t kMinWidth = 24;
constexpr size_t kMaxWidth = 2048;
constexpr size_t kMinRows = 8;
constexpr size_t kNear = 4, kFar = 8;  // distances of the widths that one must stand out from
constexpr double kLeastScore = 0.02;
constexpr double kClearlyPeriodic = 0.5;  // correlation of row means from which frames are taken to repeat

/** A way to read the bytes as values. */
struct Coding {
  size_t bytes;
  bool big_endian;
};

struct Values {
  std::vector<int32_t> centred;  // less their mean
  double variance = 0;
  int32_t largest = 0;
};

Values values_of(std::span<const uint8_t> bytes, Coding coding) {
  Values result;
  const size_t count = std::min(bytes.size() / coding.bytes, kSample);
  int64_t sum = 0;
  for (size_t i = 0; i < count; i++) {
    const uint8_t* const at = &bytes[i * coding.bytes];
    const int32_t value = coding.bytes == 1 ? at[0] : coding.big_endian ? at[0] << 8 | at[1] : at[1] << 8 | at[0];
    result.centred.push_back(value);
    result.largest = std::max(result.largest, value);
    sum += value;
  }
  const auto mean = static_cast<int32_t>(sum / static_cast<int64_t>(std::max<size_t>(count, 1)));
  double squares = 0;
  for (int32_t& value : result.centred) {
    value -= mean;
    squares += static_cast<double>(value) * value;
  }
  result.variance = squares / static_cast<double>(std::max<size_t>(count, 1));
  return result;
}

// Correlation of the values with those `lag` further on: of neighbouring rows, when the lag is the width.
double correlation(const Values& values, size_t lag) {
  const size_t count = values.centred.size() - lag;
  int64_t sum = 0;
  for (size_t i = 0; i < count; i++) sum += int64_t{values.centred[i]} * values.centred[i + lag];
  return values.variance == 0 ? 0 : static_cast<double>(sum) / static_cast<double>(count) / values.variance;
}

// Rows of a frame, by how the means of the rows repeat; all of them when they do not.
size_t frame_height(std::span<const uint8_t> bytes, Coding coding, size_t width, size_t rows) {
  std::vector<double> means(std::min<size_t>(rows, 4096));
  const size_t pitch = width * coding.bytes;
  for (size_t y = 0; y < means.size(); y++) {
    // Of wide values the high byte says enough.
    for (size_t i = coding.bytes - (coding.big_endian ? coding.bytes : 1); i < pitch; i += coding.bytes) {
      means[y] += bytes[y * pitch + i];
    }
  }
  const auto repeats = [&means](size_t lag) {
    double a = 0, b = 0, aa = 0, bb = 0, ab = 0;
    const size_t count = means.size() - lag;
    for (size_t i = 0; i < count; i++) {
      const double x = means[i], y = means[i + lag];
      a += x, b += y, aa += x * x, bb += y * y, ab += x * y;
    }
    const auto n = static_cast<double>(count);
    const double scale = std::sqrt((n * aa - a * a) * (n * bb - b * b));
    return scale > 0 ? (n * ab - a * b) / scale : 0;
  };
  size_t best = rows;
  double most = kClearlyPeriodic;
  for (size_t height = std::max(width / 2, kMinWidth); height <= means.size() / 2; height++) {
    if (rows % height != 0) continue;
    const double value = repeats(height);
    if (value > most + 0.05) most = value, best = height;  // of multiples the first
  }
  return best;
}

int32_t bits_of(const Values& values, Coding coding) {
  return coding.bytes == 1 ? 8 : values.largest < 1024 ? 10 : values.largest < 4096 ? 12 : 16;
}

// `trust` is how far the coding may be believed in at all, 0 to 1.
void add_guesses(std::span<const uint8_t> bytes, Coding coding, double trust, std::vector<SizeGuess>& guesses) {
  const Values values = values_of(bytes, coding);
  const size_t count = bytes.size() / coding.bytes;
  if (values.centred.size() < kMinWidth * kMinRows || values.variance == 0) return;
  const size_t widest = std::min(kMaxWidth, values.centred.size() / kMinRows);
  // Values that are nothing like their neighbours are not gray levels, but halves of them, or in the wrong order.
  const double smoothness = std::max(0.0, correlation(values, 1));
  if (smoothness < 0.1) return;
  std::vector<double> correlations(widest + kFar + 1);
  for (size_t lag = kMinWidth - kFar; lag < correlations.size(); lag++) correlations[lag] = correlation(values, lag);
  for (size_t width = kMinWidth; width <= widest; width++) {
    double near = 0;
    for (size_t d = kNear; d <= kFar; d++) near += correlations[width - d] + correlations[width + d];
    near /= 2 * (kFar - kNear + 1);
    const double own = correlations[width];
    const bool peak = own >= correlations[width - 1] && own >= correlations[width + 1];
    double score = (own - std::max(near, 0.0)) * smoothness * trust;
    if (count % width != 0) score *= 0.8;  // frames fill their file, unless it has a header
    if (!peak || score < kLeastScore) continue;
    SizeGuess guess;
    guess.width = static_cast<int32_t>(width);
    guess.bits = bits_of(values, coding);
    guess.big_endian = coding.big_endian;
    guess.correlation = own;
    guess.score = score;
    guesses.push_back(guess);
  }
}

}  // namespace

std::vector<SizeGuess> guess_sizes(std::span<const uint8_t> bytes, size_t most) {
  std::vector<SizeGuess> guesses;
  const Coding single{1, false};
  const Values values = values_of(bytes, single);
  // Where neighbouring bytes are alike they are pixels of their own, not high and low halves.
  const double alike = values.centred.size() < 2 ? 0 : std::clamp(correlation(values, 1), 0.0, 1.0);
  add_guesses(bytes, single, 1, guesses);
  for (const bool big_endian : {false, true}) add_guesses(bytes, {2, big_endian}, 1 - alike, guesses);
  std::stable_sort(guesses.begin(), guesses.end(),
                   [](const SizeGuess& a, const SizeGuess& b) { return a.score > b.score; });
  guesses.resize(std::min(guesses.size(), most));
  for (SizeGuess& guess : guesses) {
    const Coding coding{guess.bits > 8 ? size_t{2} : size_t{1}, guess.big_endian};
    const auto width = static_cast<size_t>(guess.width);
    const size_t rows = bytes.size() / coding.bytes / width;
    const size_t height = std::min<size_t>(frame_height(bytes, coding, width, rows), 16384);
    guess.height = static_cast<int32_t>(height);
    guess.frames = static_cast<int64_t>(rows / height);
    guess.rest = static_cast<int64_t>(bytes.size() - rows / height * height * width * coding.bytes);
  }
  return guesses;
}

}  // namespace quofp
