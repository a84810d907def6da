#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

void call_class(Case& c) {
  c.add(DDIndex(c.random().between(-20, 260)));
  c.add(DDIndex(c.argument(0, 180)));
}

void call_sites(Case& c) {
  for (const auto& sites : g_DDSite) {
    for (const auto& site : sites) {
      c.add(site[0]);
      c.add(site[1]);
    }
  }
}

void call_enhance(Case& c) {
  Image directions = c.content();
  for (uint8_t& degrees : directions.pixels) degrees = c.random().chance(90) ? c.random().byte() % 181 : degrees;
  uint8_t* const image = c.in_place(c.content());
  c.add(OrientEnhance(image, c.read_only(directions), c.width, c.height));
}

void call_segment(Case& c) {
  uint8_t* const image = c.in_place(c.content());
  c.add(FingerprintImageSegment(image, c.width, c.height, c.pick({100, 150, 200, 253, 254, 0, -1, INT_MAX, INT_MIN})));
}

void call_binary(Case& c) {
  uint8_t* const data = c.in_place(c.content(c.width, 1));
  const int32_t count = c.pick({c.width, c.width, 0, -1, INT_MIN});
  c.add(BinaryThreshold(data, count, c.random().byte()) == data);
}

void call_adaptive(Case& c) {
  const uint8_t* const source = c.frame();
  const int32_t window = c.argument(1, 15);
  const int32_t offset = c.pick({0, 3, -3, 10, 300, INT_MAX, INT_MIN});
  AdaptiveThreshold(source, c.image_output(c.width, c.height), c.width, c.height, window, offset);
}

template <auto stretch>
void call_stretch(Case& c) {
  const uint8_t* const source = c.frame();
  const int32_t across = c.argument(1, 17), down = c.argument(1, 17);
  c.add(stretch(source, c.image_output(c.width, c.height), c.width, c.height, across, down));
}

void call_valid_area(Case& c) {
  uint8_t* const image = c.in_place(c.content());
  c.add(ValidAreaGrayStretch(image, c.width, c.height));
}

void call_balance(Case& c) {
  const uint8_t* const source = c.frame();
  const int32_t across = c.argument(3, 17), down = c.argument(3, 17);
  uint8_t* const output = c.image_output(c.width, c.height);
  c.add(LocalGrayBalance(source, output, c.width, static_cast<uint32_t>(c.height), across, down));
}

void call_median(Case& c) {
  if (c.random().chance(50)) {
    uint8_t* const image = c.in_place(c.content());
    MedianFilter(image, image, c.width, c.height);
  } else {
    const uint8_t* const source = c.frame();
    MedianFilter(source, c.image_output(c.width, c.height), c.width, c.height);
  }
}

void call_erode(Case& c) {
  Image mask = c.content();
  for (uint8_t& pixel : mask.pixels) pixel = pixel > 40 ? 255 : pixel;
  const uint8_t* const set = c.read_only(mask);
  uint8_t* const output = c.maybe(c.in_place(Image(c.width, c.height)));
  const int32_t border = c.argument(0, 4);
  MyCrossErode(set, output, c.width, c.height, border, c.maybe(c.output<uint32_t>()));
}

void call_grow(Case& c) {
  Image image = c.content(), labels(c.width, c.height);
  for (uint8_t& pixel : image.pixels) pixel = pixel / 64;
  for (uint8_t& label : labels.pixels) label = c.random().chance(3) ? 9 : 0;
  const uint8_t* const gray = c.read_only(image);
  uint8_t* const written = c.in_place(labels);
  uint32_t* out[5];
  for (uint32_t*& value : out) value = c.maybe(c.output<uint32_t>());
  const int32_t x = c.argument(-2, c.width + 1), y = c.argument(-2, c.height + 1);
  const uint32_t label = c.pick({1U, 255U, 256U, 0U, 0x101U});
  const auto width = static_cast<uint32_t>(c.width), height = static_cast<uint32_t>(c.height);
  c.add(RegionGrowByEightNeighbor(x, y, label, gray, width, height, written, out[0], out[1], out[2], out[3], out[4]));
}

}  // namespace

const std::vector<Function> kToolboxFunctions = {
    {"DDIndex", call_class},
    {"g_DDSite", call_sites},
    {"OrientEnhance", call_enhance},
    {"FingerprintImageSegment", call_segment},
    {"BinaryThreshold", call_binary},
    {"AdaptiveThreshold", call_adaptive},
    {"AreaGrayStretch", call_stretch<AreaGrayStretch>},
    {"BlockGrayStretch", call_stretch<BlockGrayStretch>},
    {"ValidAreaGrayStretch", call_valid_area},
    {"LocalGrayBalance", call_balance},
    {"MedianFilter", call_median},
    {"MyCrossErode", call_erode},
    {"RegionGrowByEightNeighbor", call_grow},
};

}  // namespace golden
