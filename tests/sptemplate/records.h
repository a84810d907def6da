// Profile records and templates for tests, from their sections.
#pragma once

#include "support/testing.h"

namespace quo_test {

using Bytes = std::vector<uint8_t>;

inline void append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

/** A big-endian length. */
inline Bytes u16(size_t value) { return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}; }

/** A record of the given profiles. */
inline Bytes record_of(const std::vector<Bytes>& profiles, uint8_t version = 1) {
  Bytes payload;
  for (const Bytes& profile : profiles) {
    append(payload, u16(profile.size()));
    append(payload, profile);
  }
  Bytes record{version};
  append(record, u16(payload.size()));
  append(record, payload);
  return record;
}

/** A profile as binarisation makes them: 0, 255 and, seldom, 254, in runs of varied length. */
inline Bytes random_profile(Random& random, size_t length) {
  Bytes profile;
  while (profile.size() < length) {
    const uint8_t value = random.chance(50) ? 0 : random.chance(90) ? 255 : 254;
    const int32_t run = random.between(1, random.chance(5) ? 300 : 12);
    profile.insert(profile.end(), static_cast<size_t>(run), value);
  }
  profile.resize(length);
  return profile;
}

}  // namespace quo_test
