#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

void call_smooth(Case& c) {
  uint8_t* const frame = c.in_place(c.content());
  c.add(GasssianSmooth(frame, c.image_output(c.width, c.height), c.width, c.height));
}

void call_variance(Case& c) {
  const uint8_t* const values = c.maybe(c.frame());
  c.add(Variance(values, c.width < 0 ? c.width : c.width * c.height));
}

void call_block_variance(Case& c) {
  const uint8_t* const frame = c.frame();
  const int32_t size = c.pick({16, 16, c.argument(1, 20)});
  const auto margin = c.pick<uint8_t>({4, 4, 0, 1, 9, 255});
  double* variances = nullptr;
  uint32_t *const across = c.maybe(c.output<uint32_t>()), *const down = c.maybe(c.output<uint32_t>());
  double** const output = c.maybe(&variances);
  c.add(ImgBlockVariance(frame, c.width, c.height, margin, size, output, across, down));
  c.take(variances, across != nullptr && down != nullptr ? size_t{*across} * *down : 1);
}

void call_snr(Case& c) {
  const uint8_t* const frame = c.frame();
  uint8_t* outputs[3];
  for (uint8_t*& output : outputs) output = c.maybe(c.output<uint8_t>());
  c.add(FP_ComputeSNR(frame, static_cast<uint32_t>(c.width), static_cast<uint32_t>(c.height), outputs[0], outputs[1],
                      outputs[2]));
}

// Half of the frames have little contrast, and a bright blob.
void call_bubbles(Case& c) {
  Image content = c.content();
  if (c.random().chance(50)) {
    const int32_t left = c.random().between(0, 40), top = c.random().between(0, 40), side = c.random().between(1, 9);
    content = Image(c.width, c.height, [&](int32_t x, int32_t y) {
      const bool in_blob = x >= left && x < left + side && y >= top && y < top + side;
      return in_blob ? 250 : content.at(x, y) / 4;
    });
  }
  const uint8_t* const frame = c.read_only(content);
  uint8_t* image = nullptr;
  uint32_t* const count = c.maybe(c.output<uint32_t>());
  uint8_t** const output = c.maybe(&image);
  c.add(CreateBubbleImage(frame, static_cast<uint32_t>(c.width), static_cast<uint32_t>(c.height), count, output));
  c.take(image, content.pixels.size());
}

void call_erode(Case& c) {
  Image content = c.content();
  for (uint8_t& pixel : content.pixels) pixel = pixel > 30 ? 255 : pixel;
  const uint8_t* const mask = c.read_only(content);
  uint8_t* const output = c.image_output(c.width, c.height);
  const int32_t border = c.argument(-1, 5);
  MyRectErode(mask, output, c.width, c.height, border, c.maybe(c.output<uint32_t>()));
}

}  // namespace

const std::vector<Function> kSignalFunctions = {
    {"GasssianSmooth", call_smooth}, {"Variance", call_variance},         {"ImgBlockVariance", call_block_variance},
    {"FP_ComputeSNR", call_snr},     {"CreateBubbleImage", call_bubbles}, {"MyRectErode", call_erode},
};

}  // namespace golden
