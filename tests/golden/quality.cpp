#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

void add_record(Case& c, const quo_block_record& record) {
  c.add(record.direction);
  c.add(record.mean);
  c.add(record.deviation);
  c.add(record.bright);
}

template <auto score>
void call_score(Case& c) {
  const uint8_t* const frame = c.frame();
  uint8_t* out[4];
  for (uint8_t*& value : out) value = c.maybe(c.output<uint8_t>());
  c.add(score(frame, c.width, c.height, out[0], out[1], out[2], out[3]));
}

template <auto score>
void call_score_or_null(Case& c) {
  const uint8_t* const frame = c.maybe(c.frame());
  c.add(score(frame, c.width, c.height, c.output<uint8_t>(), nullptr, nullptr, nullptr));
  call_score<score>(c);
}

void call_sparse_blocks(Case& c) {
  const uint8_t* const frame = c.frame();
  quo_block_record* records = nullptr;
  int32_t* const count = c.maybe(c.output<int32_t>(0));
  c.add(BlockOrientation_MCU(frame, c.width, c.height, c.maybe(&records), count));
  for (int32_t i = 0; records != nullptr && i < *count; i++) add_record(c, records[i]);
  tev_quo_free(records);
}

void call_dense_blocks(Case& c) {
  const uint8_t* const frame = c.frame();
  const int32_t nbx = c.argument(1, 12);
  int32_t nby = c.argument(1, 12);
  if (nbx > 0 && nby > 0 && int64_t{nbx} * nby > 4000) nby = 0;
  std::vector<quo_block_record> records(nbx > 0 && nby > 0 ? static_cast<size_t>(nbx * nby) : 0, {7, 1.0, 2.0, 3.0});
  const int32_t radius = c.argument(0, 6);
  c.add(BlockOrientation(frame, c.width, c.height, records.data(), nbx, nby, radius, c.maybe(c.output<uint8_t>())));
  for (const quo_block_record& record : records) add_record(c, record);
}

void call_bin(Case& c) {
  c.add(DDIndex8(c.random().between(-20, 200)));
  c.add(DDIndex8(c.argument(0, 179)));
}

void call_orientation(Case& c) {
  const Image content = c.content();
  uint8_t* const output = c.maybe(c.image_output(c.width, c.height));
  c.add(Orientation(c.read_only(content), output, c.width, c.height, c.argument(0, 6)));
}

}  // namespace

const std::vector<Function> kQualityFunctions = {
    {"FP_ImageQuality", call_score_or_null<FP_ImageQuality>, true},
    {"FP_ImageQuality_MCU", call_score_or_null<FP_ImageQuality_MCU>, true},
    {"ImageQuality_MCU", call_score<ImageQuality_MCU>, true},
    {"BlockOrientation_MCU", call_sparse_blocks, true},
    {"BlockOrientation", call_dense_blocks},
    {"DDIndex8", call_bin},
    {"ImageQuality", call_score<ImageQuality>, true},
    {"Orientation", call_orientation},
};

}  // namespace golden
