// Bytes as text for data addresses (RFC 4648, section 4).
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quofp {

inline std::string base64(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    uint32_t group = 0;
    for (size_t k = 0; k < 3; k++) group = group << 8 | (k < count ? bytes[i + k] : 0U);
    for (size_t k = 0; k < 4; k++) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

}  // namespace quofp
