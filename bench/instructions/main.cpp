// Runs each operator once on a fixed frame, for callgrind to count its instructions: a figure that, unlike time, is the
// same in every run on every machine. scripts/instructions compares it with the committed one.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "quoFPAlg.h"
#include "support/frames.h"

namespace {

// What the operators work on. All of it is made anew for each, so that none sees what another left.
struct Material {
  Material(int32_t w, int32_t h) : width(w), height(h) {
    quo_test::Random random(1);
    frame = quo_test::generate(random, width, height, quo_test::Fill::kRidges);
    mask = frame;
    BinaryThreshold(mask.data(), width * height, 128);
    output = quo_test::Image(width, height);
    directions = frame;
    Orientation(frame.data(), directions.data(), width, height, 3);
    table.resize(static_cast<size_t>(width + 1) * static_cast<size_t>(height + 1));
  }

  int32_t width, height;
  quo_test::Image frame, mask, output, directions;
  std::vector<uint32_t> table;
  uint8_t bytes[4] = {};
  uint32_t words[5] = {};
};

// What a call hands out is dropped when it comes back.
class Block {
 public:
  ~Block() { tev_quo_free(data_); }
  uint8_t** out() { return &data_; }

 private:
  uint8_t* data_ = nullptr;
};

struct Operator {
  const char* name;
  std::function<void(Material&)> run;
  bool small_frames = false;  // for frames of a phone's sensor alone: templates of larger ones are never matched
};

void match_templates(Material& m) {
  Block sp_template;
  FP_ExtractSpTemplates(m.frame.data(), static_cast<uint32_t>(m.width), static_cast<uint32_t>(m.height),
                        sp_template.out(), nullptr);
  CALLGRIND_ZERO_STATS;
  FP_MatchSpTemplates(*sp_template.out(), *sp_template.out(), m.words);
}

#define FRAME m.frame.data()
#define SIZE m.width, m.height
#define UNSIGNED_SIZE static_cast<uint32_t>(m.width), static_cast<uint32_t>(m.height)

const Operator kOperators[] = {
    {"CalcHistogram", [](Material& m) { CalcHistogram(FRAME, m.width * m.height, m.table.data(), 256); }},
    {"GetGrayIntegralImage", [](Material& m) { GetGrayIntegralImage(FRAME, m.table.data(), SIZE, m.width); }},
    {"ZoomImg/0", [](Material& m) { ZoomImg(FRAME, m.output.data(), SIZE, 0); }},
    {"ZoomImg/1", [](Material& m) { ZoomImg(FRAME, m.output.data(), SIZE, 1); }},
    {"FP_GetValidArea", [](Material& m) { FP_GetValidArea(FRAME, SIZE, 0, m.bytes, m.bytes + 1); }},
    {"FP_GetBlockValidArea",
     [](Material& m) { FP_GetBlockValidArea(FRAME, SIZE, m.bytes, m.bytes + 1, m.bytes + 2, m.bytes + 3); }},
    {"RemoveVerticalStripes_All", [](Material& m) { RemoveVerticalStripes_All(FRAME, FRAME, SIZE); }},
    {"RemoveVerticalStripes_Sector", [](Material& m) { RemoveVerticalStripes_Sector(FRAME, FRAME, SIZE); }},
    {"GetEnhanceCoef", [](Material& m) { GetEnhanceCoef(FRAME, UNSIGNED_SIZE, 100); }},
    {"LocalGrayBalance_Slice/3", [](Material& m) { LocalGrayBalance_Slice(FRAME, SIZE, 3, 0, 4, 0, 0); }},
    {"LocalGrayBalance_Slice/9", [](Material& m) { LocalGrayBalance_Slice(FRAME, SIZE, 9, 0, 4, 0, 0); }},
    {"FP_ImagePreproc", [](Material& m) { FP_ImagePreproc(FRAME, SIZE, 0, nullptr, 15); }},
    {"FP_ImageEnhance_Slice", [](Material& m) { FP_ImageEnhance_Slice(FRAME, SIZE, 32, 100); }},
    {"FP_ImageQuality",
     [](Material& m) { FP_ImageQuality(FRAME, SIZE, m.bytes, m.bytes + 1, m.bytes + 2, m.bytes + 3); }},
    {"ImageQuality", [](Material& m) { ImageQuality(FRAME, SIZE, m.bytes, m.bytes + 1, m.bytes + 2, m.bytes + 3); }},
    {"Orientation", [](Material& m) { Orientation(FRAME, m.output.data(), SIZE, 3); }},
    {"CheckBadLine",
     [](Material& m) { CheckBadLine(FRAME, SIZE, 220, m.words, m.words + 1, nullptr, nullptr); }},
    {"FP_GetBadPixelsNum", [](Material& m) { FP_GetBadPixelsNum(FRAME, SIZE, m.words, Block().out()); }},
    {"FP_CheckBadPixelsNum_MCU", [](Material& m) { FP_CheckBadPixelsNum_MCU(FRAME, SIZE, 500, m.bytes); }},
    {"FP_ExtractSpTemplates",
     [](Material& m) { FP_ExtractSpTemplates(FRAME, UNSIGNED_SIZE, Block().out(), m.words); }},
    {"FP_MatchSpTemplates", match_templates, true},
    {"GasssianSmooth", [](Material& m) { GasssianSmooth(FRAME, m.output.data(), SIZE); }},
    {"FP_ComputeSNR",
     [](Material& m) { FP_ComputeSNR(FRAME, UNSIGNED_SIZE, m.bytes, m.bytes + 1, m.bytes + 2); }},
    {"CreateBubbleImage", [](Material& m) { CreateBubbleImage(FRAME, UNSIGNED_SIZE, m.words, Block().out()); }},
    {"MyRectErode", [](Material& m) { MyRectErode(m.mask.data(), m.output.data(), SIZE, 1, m.words); }},
    {"tev_GetFingerMean", [](Material& m) { tev_GetFingerMean(FRAME, SIZE, m.bytes, m.bytes + 1); }},
    {"OrientEnhance", [](Material& m) { OrientEnhance(FRAME, m.directions.data(), SIZE); }},
    {"FingerprintImageSegment", [](Material& m) { FingerprintImageSegment(FRAME, SIZE, 180); }},
    {"BinaryThreshold", [](Material& m) { BinaryThreshold(FRAME, m.width * m.height, 128); }},
    {"AdaptiveThreshold/15", [](Material& m) { AdaptiveThreshold(FRAME, m.output.data(), SIZE, 15, 0); }},
    {"AdaptiveThreshold/31", [](Material& m) { AdaptiveThreshold(FRAME, m.output.data(), SIZE, 31, 0); }},
    {"AreaGrayStretch/15", [](Material& m) { AreaGrayStretch(FRAME, m.output.data(), SIZE, 15, 15); }},
    {"AreaGrayStretch/31", [](Material& m) { AreaGrayStretch(FRAME, m.output.data(), SIZE, 31, 31); }},
    {"BlockGrayStretch", [](Material& m) { BlockGrayStretch(FRAME, m.output.data(), SIZE, 16, 16); }},
    {"ValidAreaGrayStretch", [](Material& m) { ValidAreaGrayStretch(FRAME, SIZE); }},
    {"LocalGrayBalance/15",
     [](Material& m) {
       LocalGrayBalance(FRAME, m.output.data(), m.width, static_cast<uint32_t>(m.height), 15, 15);
     }},
    {"MedianFilter", [](Material& m) { MedianFilter(FRAME, m.output.data(), SIZE); }},
    {"MyCrossErode", [](Material& m) { MyCrossErode(m.mask.data(), m.output.data(), SIZE, 1, m.words); }},
    {"RegionGrowByEightNeighbor",
     [](Material& m) {
       RegionGrowByEightNeighbor(m.width / 2, m.height / 2, 1, m.mask.data(), UNSIGNED_SIZE, m.output.data(), m.words,
                                 m.words + 1, m.words + 2, m.words + 3, m.words + 4);
     }},
};

}  // namespace

int main() {
  const struct {
    int32_t width, height;
  } sizes[] = {{160, 160}, {640, 480}};
  for (const auto& size : sizes) {
    for (const Operator& operation : kOperators) {
      if (operation.small_frames && size.width > sizes[0].width) continue;
      // The first call binds what is bound late and fills the allocator's lists.
      Material first(size.width, size.height);
      operation.run(first);
      Material material(size.width, size.height);
      CALLGRIND_ZERO_STATS;
      operation.run(material);
      const std::string name =
          std::string(operation.name) + " " + std::to_string(size.width) + "x" + std::to_string(size.height);
      CALLGRIND_DUMP_STATS_AT(name.c_str());
    }
  }
}
