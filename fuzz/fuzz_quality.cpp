// Quality scores and orientation fields against their literal form.
// Input: function, failing allocation, arguments, then a frame.
#include <cmath>
#include <limits>

#include "reference/quality.h"
#include "support/drawn.h"
#include "support/hooks.h"

using namespace quo_fuzz;

namespace {

constexpr int kTouched = 77;

reference::Scores expected_scores(const Image& image, bool sparse) {
  if (sparse) return reference::score(reference::sparse_blocks(image), true);
  const auto [blocks, area] = reference::dense_blocks(image, image.width / 8, image.height / 8, 3);
  reference::Scores scores = reference::score(blocks, false);
  scores.area = area;
  return scores;
}

void score(Input& input, uint8_t failing) {
  static constexpr decltype(&ImageQuality) kEntries[] = {ImageQuality, ImageQuality_MCU, FP_ImageQuality,
                                                         FP_ImageQuality_MCU};
  const uint8_t entry = choice(input, 4), asked = input.byte();
  Image image;
  const Size size = frame(input, image, entry == 0 ? 41 * 40 : 40000);
  const auto [result, out] = same_twice(failing, [&] {
    Bytes bytes(4, kTouched);
    uint8_t* place[4];
    for (size_t i = 0; i < 4; i++) place[i] = (asked >> i & 1) == 0 ? &bytes[i] : nullptr;
    const uint32_t code =
        kEntries[entry](address(image), size.width, size.height, place[0], place[1], place[2], place[3]);
    return std::tuple(code, bytes);
  });
  require(result == (allocation_failed() ? QUO_NO_MEMORY : QUO_OK), "only memory can fail");
  const reference::Scores scores = expected_scores(image, entry != 0);
  int values[] = {scores.quality, scores.area, scores.bright, scores.mean_gray < 0 ? kTouched : scores.mean_gray};
  if (result != QUO_OK) {
    for (int& value : values) value = kTouched;
    if (entry == 0) values[0] = values[2] = 0;
  }
  for (size_t i = 0; i < 4; i++) {
    require(out[i] == ((asked >> i & 1) == 0 ? values[i] : kTouched), "the scores are the reference's");
  }
}

void sparse_blocks(Input& input, uint8_t failing) {
  Image image;
  const Size size = frame(input, image, 40000);
  const auto [result, blocks] = same_twice(failing, [&] {
    quo_block_record* records = nullptr;
    int32_t count = kTouched;
    const uint32_t code = BlockOrientation_MCU(address(image), size.width, size.height, &records, &count);
    require(code == QUO_OK || (records == nullptr && count == kTouched), "nothing is written on failure");
    return std::tuple(code, taken(records, static_cast<size_t>(count)));
  });
  require(result == (allocation_failed() ? QUO_NO_MEMORY : QUO_OK), "only memory can fail");
  if (result == QUO_OK) require(blocks == reference::sparse_blocks(image), "the records are the reference's");
}

void dense_blocks(Input& input, uint8_t failing) {
  const int32_t nbx = std::min(number(input), 200), nby = std::min(number(input), 200), radius = number(input);
  Image image;
  const Size size = frame(input, image, radius > 6 ? 24 * 24 : 41 * 40);
  const size_t count = nbx > 0 && nby > 0 ? static_cast<size_t>(nbx) * static_cast<size_t>(nby) : 0;
  const reference::Records untouched(count, {kTouched, kTouched, kTouched, kTouched});
  const auto [result, blocks, share] = same_twice(failing, [&] {
    reference::Records records = untouched;
    uint8_t area = kTouched;
    const uint32_t code =
        BlockOrientation(address(image), size.width, size.height, records.data(), nbx, nby, radius, &area);
    return std::tuple(code, records, int{area});
  });
  require(result == (allocation_failed() ? QUO_NO_MEMORY : QUO_OK), "only memory can fail");
  const auto expected = reference::dense_blocks(image, nbx, nby, std::max(radius, 0));
  require(blocks == (result == QUO_OK ? expected.blocks : untouched), "the records are the reference's");
  require(share == (result == QUO_OK ? expected.area : kTouched), "the area is the reference's");
}

double never_a_number(double, double) { return std::nan(""); }
double endless(double, double x) { return x > 0 ? std::numeric_limits<double>::infinity() : -1e300; }

// A program's own arctangent may answer anything.
void orient(Input& input, uint8_t failing) {
  static constexpr double (*kArctangents[])(double, double) = {nullptr, nullptr, never_a_number, endless};
  const uint8_t arctangent = choice(input, std::size(kArctangents));
  const bool in_place = choice(input, 2) == 0;
  const int32_t radius = number(input);
  Image image;
  const Size size = frame(input, image, radius > 6 ? 24 * 24 : 41 * 40);
  const auto [done, field] = same_twice(failing, [&] {
    quo_test::set_arctangent(kArctangents[arctangent]);
    Image source = image, output = image;
    const uint32_t code =
        Orientation(address(in_place ? output : source), address(output), size.width, size.height, radius);
    require(source == image, "the source stays");
    return std::tuple(code, output);
  });
  const bool small = image.width < 2 || image.height < 2;
  require((done == 1) == (!small && !allocation_failed()), "only memory and small frames can fail");
  if (done == 0) require(field == image, "nothing is written on failure");
  if (done == 0 || kArctangents[arctangent] != nullptr) return;
  require(field == reference::orientation_field(image, std::max(radius, 0)), "the field is the reference's");
  const auto cells = static_cast<uint64_t>(image.width / 2) * static_cast<uint64_t>(image.height / 2);
  require(quo_test::hooks().arctangents == cells, "one arctangent for each half-size pixel");
}

void bin(Input& input, uint8_t) {
  const int32_t degrees = static_cast<int32_t>(input.u16()) - 32768;
  const bool inside = degrees >= 11 && degrees <= 168;
  require(DDIndex8(degrees) == (inside ? static_cast<uint32_t>(degrees - 11) / 23 + 1 : 0), "the bin of 23 degrees");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&, uint8_t) = {score, sparse_blocks, dense_blocks, orient, bin};
  const uint8_t target = choice(input, std::size(kTargets)), failing = input.byte();
  kTargets[target](input, failing);
  return 0;
}
