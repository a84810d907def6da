#include "formats/raw.h"

#include "failure.h"

namespace quofp {

Samples decode_raw(const std::string& name, std::span<const uint8_t> bytes, const RawLayout& layout) {
  Samples samples{layout.size.width, layout.size.height, (1 << layout.bits) - 1, {}};
  samples.values.resize(samples.count());
  const bool wide = layout.bits > 8;
  const auto pitch = static_cast<size_t>(layout.pitch()), width = static_cast<size_t>(layout.size.width);
  for (size_t i = 0; i < samples.values.size(); i++) {
    const size_t at = i / width * pitch + i % width * (wide ? 2 : 1);
    const int32_t first = bytes[at], second = wide ? bytes[at + 1] : 0;
    const int32_t value = !wide ? first : layout.big_endian ? first << 8 | second : second << 8 | first;
    if (value > samples.maximum) {
      throw file_failure(name, "raw: pixel " + place_of(samples, i) + " is " + std::to_string(value) + ", above the " +
                                   std::to_string(samples.maximum) + " of " + std::to_string(layout.bits) +
                                   " bits: see --bits, --endian and --offset");
    }
    samples.values[i] = static_cast<uint16_t>(value);
  }
  return samples;
}

}  // namespace quofp
