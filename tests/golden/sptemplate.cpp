#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

// More than any template with a payload that the decoder accepts can make it read: two bytes for each of 1020.
constexpr int32_t kMostCoded = 2100;

// A frame large enough for a template more often than the case's size is.
Image profile_frame(Case& c) {
  if (c.random().chance(60)) return c.content();
  const int32_t w = c.random().between(25, 60);
  return c.content(w, c.random().between(25, 60));
}

std::vector<uint8_t> section(Case& c, int32_t length) {
  std::vector<uint8_t> bytes = {static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
  const bool runs = c.random().chance(70);
  for (int32_t i = 0; i < length; i++) {
    const bool same = i > 0 && runs && c.random().chance(80);
    bytes.push_back(same ? bytes.back() : c.pick<uint8_t>({0, 0, 255, 254}));
  }
  return bytes;
}

// A record of sound sections, now and then with a wrong length in it, in exactly the bytes that its payload claims.
Image record(Case& c) {
  std::vector<uint8_t> payload;
  for (int32_t sections = c.random().between(0, 12); sections > 0; sections--) {
    const std::vector<uint8_t> next = section(c, c.random().between(0, 90));
    payload.insert(payload.end(), next.begin(), next.end());
  }
  if (payload.size() > 2 && c.random().chance(20)) payload[1] = c.random().byte();
  Image bytes(static_cast<int32_t>(payload.size()) + 3, 1);
  bytes.pixels[0] = c.pick<uint8_t>({1, 1, 1, 0, 7});
  bytes.pixels[1] = static_cast<uint8_t>(payload.size() >> 8);
  bytes.pixels[2] = static_cast<uint8_t>(payload.size());
  std::copy(payload.begin(), payload.end(), bytes.pixels.begin() + 3);
  return bytes;
}

// Bytes as an attacker would store them: a plausible header, then anything.
Image stored_template(Case& c) {
  Image bytes(kMostCoded, 1);
  for (uint8_t& byte : bytes.pixels) byte = c.random().chance(60) ? c.pick<uint8_t>({0, 1, 2, 3}) : c.random().byte();
  bytes.pixels[0] = c.pick<uint8_t>({0, 0, 1});
  bytes.pixels[1] = c.pick<uint8_t>({0, 0, 1, 3, 4});
  return bytes;
}

void call_binarise(Case& c) {
  const Image line = c.content(c.width * (c.height > 8 ? 8 : 1), 1);
  c.add(AdaptiveLineBinary(c.in_place(line), line.width));
}

void call_extract_profiles(Case& c) {
  const Image image = profile_frame(c);
  const uint8_t* const frame = c.read_only(image);
  uint32_t* const size = c.maybe(c.output<uint32_t>(0));
  uint8_t* profiles = nullptr;
  c.add(ExtractSpTemplates(frame, image.width, image.height, c.maybe(&profiles), size));
  const bool sized = size != nullptr && profiles != nullptr;
  c.take(profiles, sized ? *size : 0);
}

void call_encode(Case& c) {
  const uint8_t* const from = c.read_only(record(c));
  uint32_t* const size = c.output<uint32_t>(0);
  uint8_t* coded = nullptr;
  c.add(EncodeSpTemplates(from, c.maybe(&coded), size));
  c.take(coded, coded != nullptr ? *size : 0);
}

void call_decode(Case& c) {
  const uint8_t* const stored = c.read_only(stored_template(c));
  uint32_t* const size = c.output<uint32_t>(0);
  uint8_t* decoded = nullptr;
  c.add(DecodeSpTemplates(stored, c.maybe(&decoded), size));
  c.take(decoded, decoded != nullptr ? *size : 0);
}

void call_match_records(Case& c) {
  const Image first = record(c);
  Image second = c.random().chance(80) ? first : record(c);
  for (size_t i = 3; i < second.pixels.size(); i++) {
    if (c.random().chance(3)) second.pixels[i] = c.pick<uint8_t>({0, 255});
  }
  const uint8_t* const a = c.read_only(first);
  const uint8_t* const b = c.read_only(second);
  c.add(MatchSpTemplates(a, b, c.maybe(c.output<uint32_t>())));
}

void call_match_profiles(Case& c) {
  const int32_t n = c.random().between(0, 90);
  const uint8_t* const a = c.read_only(c.content(n, 1));
  const uint8_t* const b = c.read_only(c.content(n, 1));
  uint32_t* const span = c.output<uint32_t>();
  LocalMatchSpTemplates(a, b, static_cast<uint16_t>(n), span, c.output<uint32_t>());
}

void call_extract(Case& c) {
  const Image image = profile_frame(c);
  const uint8_t* const frame = c.read_only(image);
  uint32_t* const size = c.output<uint32_t>(0);
  uint8_t* stored = nullptr;
  const auto width = static_cast<uint32_t>(image.width), height = static_cast<uint32_t>(image.height);
  c.add(FP_ExtractSpTemplates(frame, width, height, c.maybe(&stored), size));
  c.take(stored, stored != nullptr ? *size : 0);
}

void call_delete(Case& c) {
  auto* stored = static_cast<uint8_t*>(tev_quo_malloc(10));
  for (int i = 0; i < 2; i++) FP_DeleteSpTemplates(&stored);
  c.add(stored == nullptr);
}

void call_match(Case& c) {
  if (c.random().chance(50)) {
    const uint8_t* const stored = c.read_only(stored_template(c));
    c.add(FP_MatchSpTemplates(stored, stored, c.maybe(c.output<uint32_t>())));
    return;
  }
  const Image a = c.content(40, 36);
  Image b = a;
  for (uint8_t& pixel : b.pixels) pixel = static_cast<uint8_t>(pixel ^ (c.random().chance(20) ? c.random().byte() : 0));
  uint8_t *first = nullptr, *second = nullptr;
  c.add(FP_ExtractSpTemplates(a.data(), 40, 36, &first, nullptr));
  c.add(FP_ExtractSpTemplates(b.data(), 40, 36, &second, nullptr));
  if (first != nullptr && second != nullptr) {
    c.add(FP_MatchSpTemplates(first, second, c.maybe(c.output<uint32_t>())));
  }
  FP_DeleteSpTemplates(&first);
  FP_DeleteSpTemplates(&second);
}

}  // namespace

const std::vector<Function> kSpTemplateFunctions = {
    {"AdaptiveLineBinary", call_binarise},    {"ExtractSpTemplates", call_extract_profiles},
    {"EncodeSpTemplates", call_encode},       {"DecodeSpTemplates", call_decode},
    {"MatchSpTemplates", call_match_records}, {"LocalMatchSpTemplates", call_match_profiles},
    {"FP_ExtractSpTemplates", call_extract},  {"FP_DeleteSpTemplates", call_delete},
    {"FP_MatchSpTemplates", call_match},
};

}  // namespace golden
