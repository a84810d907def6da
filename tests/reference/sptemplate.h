// Sp templates in their literal form: step by step, without bounds tricks or vector-friendly rewrites.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "quoFPAlg.h"
#include "support/frames.h"

namespace reference {

using Bytes = std::vector<uint8_t>;

/** A line against its sliding local mean. */
inline Bytes binarized(const Bytes& line) {
  Bytes result = line;
  const int n = static_cast<int>(line.size());
  for (int i = 0; i < n; i++) {
    const int low = std::max(i - 15, 0), high = std::min(i + 16, n);
    unsigned sum = 0;
    for (int k = low; k < high; k++) sum += line[static_cast<size_t>(k)];
    const unsigned mean = sum / static_cast<unsigned>(high - low);
    const uint8_t pixel = line[static_cast<size_t>(i)];
    if (pixel < 254) result[static_cast<size_t>(i)] = mean < pixel ? 255 : 0;
  }
  return result;
}

/** Between the margins of a frame: the pixels of a row, or of a column. */
inline Bytes profile(const quo_test::Image& frame, bool row, int32_t place) {
  Bytes line;
  for (int32_t i = 12; i <= (row ? frame.width : frame.height) - 13; i++) {
    line.push_back(row ? frame.at(i, place) : frame.at(place, i));
  }
  return binarized(line);
}

/** The record of a frame: version, payload length, and six binarised profiles, each after its length. */
inline Bytes record(const quo_test::Image& frame) {
  const int32_t w = frame.width, h = frame.height;
  const auto high = [](size_t length) { return static_cast<uint8_t>(length >> 8); };
  Bytes result(3, 1);
  for (int32_t i = 0; i < 6; i++) {
    const int32_t side = i < 3 ? h : w;
    const int32_t places[] = {12, side / 2, side - 12};
    const Bytes section = profile(frame, i < 3, places[i % 3]);
    result.push_back(high(section.size()));
    result.push_back(static_cast<uint8_t>(section.size()));
    result.insert(result.end(), section.begin(), section.end());
  }
  result[1] = high(result.size() - 3);
  result[2] = static_cast<uint8_t>(result.size() - 3);
  return result;
}

/** The template of a record: runs of at most 255 equal bytes, each as value and length. */
inline Bytes encoded(const Bytes& record) {
  Bytes result;
  for (size_t i = 0; i < 3; i++) result.push_back(record[i]);
  for (size_t at = 3; at < record.size();) {
    const size_t end = at + 2 + record[at] * 256U + record[at + 1];
    result.push_back(record[at]);
    result.push_back(record[at + 1]);
    for (at += 2; at < end;) {
      const size_t first = at;
      while (at < end && at - first < 255 && record[at] == record[first]) at++;
      result.push_back(record[first]);
      result.push_back(static_cast<uint8_t>(at - first));
    }
  }
  result.push_back(record[0]);
  return result;
}

/** What a decoder makes of bytes, and how many of them it looks at; bytes that are missing count as 0. */
struct Decoded {
  bool accepted = false;
  Bytes record;
  size_t read = 0;
};

inline Decoded decoded(std::span<const uint8_t> bytes) {
  Decoded result;
  const auto next = [&] { return result.read < bytes.size() ? bytes[result.read++] : (result.read++, uint8_t{0}); };
  const uint8_t version = next();
  const uint8_t high = next(), low = next();
  const size_t payload = static_cast<size_t>(high * 256 + low);
  if (payload > 1020) return result;
  Bytes& record = result.record = {version, high, low};
  while (record.size() < payload + 3) {
    if (record.size() + 2 > payload + 3) return result;
    record.push_back(next());
    record.push_back(next());
    const size_t length = record[record.size() - 2] * 256U + record.back();
    if (record.size() + std::max<size_t>(length, 1) > payload + 3) return result;
    size_t covered = 0;
    do {
      const uint8_t value = next(), count = next();
      if (count == 0 || record.size() + count > payload + 3) return result;
      record.insert(record.end(), count, value);
      covered += count;
    } while (covered < length);
  }
  result.accepted = version == 0 || next() == version;
  return result;
}

using SpanAndEqual = std::pair<uint32_t, uint32_t>;

/** Span and equal positions of two profiles, from the list of all dark positions. */
inline SpanAndEqual local_match(std::span<const uint8_t> first, std::span<const uint8_t> second) {
  std::vector<size_t> dark;
  for (size_t i = 0; i < first.size(); i++) {
    if (first[i] == 0 || second[i] == 0) dark.push_back(i);
  }
  if (dark.size() < 2) return {0, 0};
  uint32_t equal = 0;
  for (size_t i = dark.front(); i <= dark.back(); i++) equal += first[i] == second[i];
  return {static_cast<uint32_t>(dark.back() - dark.front() + 1), equal};
}

/** Score of two records, nothing when they do not fit together. */
inline std::optional<uint32_t> match(const Bytes& a, const Bytes& b) {
  if (a[0] != b[0] || a[1] != b[1] || a[2] != b[2]) return {};
  const size_t end = a[1] * 256U + a[2] + 3U;
  int length = 0, considered = 0, agreeing = 0, best = 0;
  std::vector<int> scores;
  for (size_t at = 3; at < end;) {
    if (at + 2 > end || a[at] != b[at] || a[at + 1] != b[at + 1]) return {};
    const int n = a[at] * 256 + a[at + 1];
    at += 2;
    if (at + static_cast<size_t>(n) > end) return {};
    int dark = 0, both = 0;
    for (int i = 0; i < n; i++, at++) {
      dark += a[at] == 0 || b[at] == 0;
      both += a[at] == 0 && b[at] == 0;
    }
    length += n, considered += dark, agreeing += both;
    if (dark <= n / 3) continue;
    best = std::max(best, 100 * both / dark);
    if (scores.size() < 10) scores.push_back(100 * both / dark);
  }
  float spread = 0;
  if (!scores.empty()) {
    const int count = static_cast<int>(scores.size());
    int mean = 0;
    for (const int score : scores) mean += score;
    mean /= count;
    double squares = 0;
    for (const int score : scores) squares += (score - mean) * (score - mean);
    spread = quo_sqrt(static_cast<float>(squares) / static_cast<float>(count));
  }
  int overall = length / 3 < considered ? 100 * agreeing / considered : 0;
  if (overall <= 49 && spread > 15.0F) overall *= static_cast<int>(static_cast<double>(spread) / 15.0);
  const int score = static_cast<int>(std::fma(static_cast<double>(best), 0.3, overall * 0.7));
  return static_cast<uint32_t>(std::clamp(score, 0, 100));
}

}  // namespace reference
