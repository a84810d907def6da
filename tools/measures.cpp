#include "measures.h"

#include <algorithm>
#include <array>

#include "failure.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

constexpr int32_t kBlockSide = 16;      // of the signal analysis
constexpr int32_t kTargetSpread = 100;  // of FP_ImagePreproc_Step2
constexpr uint8_t kNoMean = 255;        // what the library says where there is no finger to take a mean of

Cell mean_cell(uint8_t mean) { return mean == kNoMean ? Cell() : Cell(int64_t{mean}); }

std::vector<Cell> measure_finger(const Frame& frame) {
  uint8_t background = 0, mean = 0, coverage = 0;
  const bool found = FindBgValue(frame.data(), frame.width, frame.height, nullptr) == 1;
  check_result(frame.name, "FP_GetImageBgValue",
               FP_GetImageBgValue(frame.data(), frame.width, frame.height, &background));
  int32_t x = 0, y = 0;
  check_result(frame.name, "FP_GetFingerprintInfo",
               FP_GetFingerprintInfo(frame.data(), frame.width, frame.height, &mean, &coverage, &x, &y));
  uint8_t quarters[4] = {};
  check_result(frame.name, "FP_GetBlockValidArea",
               FP_GetBlockValidArea(frame.data(), frame.width, frame.height, &quarters[0], &quarters[1], &quarters[2],
                                    &quarters[3]));
  std::vector<Cell> cells = {frame.width, frame.height, background, found, coverage, mean_cell(mean)};
  cells.push_back(coverage == 0 ? Cell() : Cell(x));
  cells.push_back(coverage == 0 ? Cell() : Cell(y));
  for (const uint8_t quarter : quarters) cells.push_back(mean_cell(quarter));
  return cells;
}

std::vector<Cell> measure_quality(const Frame& frame) {
  uint8_t quality = 0, area = 0, bright = 0, mean_gray = kNoMean, field_quality = 0;
  check_result(frame.name, "FP_ImageQuality",
               FP_ImageQuality(frame.data(), frame.width, frame.height, &quality, &area, &bright, &mean_gray));
  check_result(frame.name, "ImageQuality",
               ImageQuality(frame.data(), frame.width, frame.height, &field_quality, nullptr, nullptr, nullptr));
  return {quality, field_quality, area, bright, mean_cell(mean_gray)};
}

std::vector<Cell> measure_blocks(const Frame& frame) {
  const Blocks blocks = find_blocks(frame);
  int64_t finger = 0;
  std::array<int64_t, 9> directions{};
  for (const quo_block_record& record : blocks.span()) {
    const int8_t direction = record.direction;
    if (direction < 0) continue;
    finger++;
    directions[static_cast<size_t>(direction)]++;
  }
  const auto fullest = std::max_element(directions.begin() + 1, directions.end());
  std::optional<int64_t> direction;
  if (*fullest > 0) direction = fullest - directions.begin();
  return {blocks.count, finger, finger - directions[0], optional_cell(direction)};
}

std::vector<Cell> measure_snr(const Frame& frame) {
  uint8_t snr = 0, signal = 0, noise = 0;
  const uint32_t result = FP_ComputeSNR(frame.data(), static_cast<uint32_t>(frame.width),
                                        static_cast<uint32_t>(frame.height), &snr, &signal, &noise);
  if (result == QUO_NO_MEMORY) throw refusal(frame.name, "FP_ComputeSNR", result, kNoBlock);
  check_result(frame.name, "FP_ComputeSNR", result);
  return {snr, signal, noise};
}

// The level against which the library judges a frame: the background of the half-size one.
uint8_t reference_level(const Frame& frame) {
  const int32_t width = frame.width / 2, height = frame.height / 2;
  std::vector<uint8_t> half(static_cast<size_t>(width) * static_cast<size_t>(height));
  ZoomImg(frame.data(), half.data(), frame.width, frame.height, 0);
  uint8_t background = 255;
  FindBgValue(half.data(), width, height, &background);
  return background;
}

int64_t count_lines(const Owned<uint8_t>& marks, int32_t lines) {
  return std::count(marks.get(), marks.get() + lines, uint8_t{1});
}

std::vector<Cell> measure_defects(const Frame& frame) {
  const Defects defects = find_defects(frame);
  return {defects.bad_columns, defects.bad_rows, defects.line_pixels, defects.pixels - defects.line_pixels};
}

std::vector<Cell> measure_bubbles(const Frame& frame) { return {find_bubbles(frame).pixels}; }

std::vector<Cell> measure_calibration(const Frame& frame) {
  uint8_t mean = 0, coverage = 0;
  check_result(frame.name, "tev_GetFingerMean",
               tev_GetFingerMean(frame.data(), frame.width, frame.height, &mean, &coverage));
  const double gain = GetEnhanceCoef(frame.data(), static_cast<uint32_t>(frame.width),
                                     static_cast<uint32_t>(frame.height), kTargetSpread);
  return {mean_cell(mean), coverage, static_cast<int32_t>(gain)};
}

}  // namespace

const Measure& finger_measure() {
  static const Measure measure{{{"width"},
                                {"height"},
                                {"background"},
                                {"found"},
                                {"coverage"},
                                {"mean"},
                                {"centre_x"},
                                {"centre_y"},
                                {"top_left"},
                                {"top_right"},
                                {"bottom_left"},
                                {"bottom_right"}},
                               measure_finger};
  return measure;
}

const Measure& quality_measure() {
  static const Measure measure{{{"quality"}, {"field_quality"}, {"area"}, {"bright"}, {"mean_gray"}}, measure_quality};
  return measure;
}

const Measure& block_measure() {
  static const Measure measure{{{"blocks"}, {"valid_blocks"}, {"directed_blocks"}, {"direction"}}, measure_blocks};
  return measure;
}

const Measure& snr_measure() {
  static const Measure measure{{{"snr"}, {"signal"}, {"noise"}}, measure_snr, kBlockSide};
  return measure;
}

const Measure& defect_measure() {
  static const Measure measure{{{"bad_columns"}, {"bad_rows"}, {"line_pixels"}, {"bad_pixels"}}, measure_defects};
  return measure;
}

const Measure& bubble_measure() {
  static const Measure measure{{{"bubble_pixels"}}, measure_bubbles, kBlockSide};
  return measure;
}

const Measure& calibration_measure() {
  static const Measure measure{{{"finger_mean"}, {"finger_coverage"}, {"gain"}}, measure_calibration};
  return measure;
}

const std::vector<const Measure*>& all_measures() {
  static const std::vector<const Measure*> measures = {&finger_measure(),     &quality_measure(), &block_measure(),
                                                       &snr_measure(),        &defect_measure(),  &bubble_measure(),
                                                       &calibration_measure()};
  return measures;
}

const std::vector<Column>& frame_columns() {
  static const std::vector<Column> columns = [] {
    std::vector<Column> all = {{"file"}};
    for (const Measure* const measure : all_measures()) {
      all.insert(all.end(), measure->columns.begin(), measure->columns.end());
    }
    all.push_back({"error"});
    return all;
  }();
  return columns;
}

std::vector<Cell> measure_all(const Frame& frame, std::string& error) {
  std::vector<Cell> cells;
  for (const Measure* const measure : all_measures()) {
    const size_t end = cells.size() + measure->columns.size();
    try {
      if (std::min(frame.width, frame.height) >= measure->smallest_side) {
        const std::vector<Cell> taken = measure->take(frame);
        cells.insert(cells.end(), taken.begin(), taken.end());
      }
    } catch (const Failure& failure) {
      if (error.empty()) error = failure.reason();
    }
    cells.resize(end);
  }
  return cells;
}

namespace {

// The measure with a column, and the place of the column in it.
std::pair<const Measure*, size_t> find_column(const std::string& name) {
  for (const Measure* const measure : all_measures()) {
    for (size_t i = 0; i < measure->columns.size(); i++) {
      if (measure->columns[i].name == name) return {measure, i};
    }
  }
  return {nullptr, 0};
}

}  // namespace

bool is_figure(const std::string& column) { return find_column(column).first != nullptr; }

std::optional<int64_t> figure_of(const Frame& frame, const std::string& column) {
  const auto [measure, place] = find_column(column);
  if (std::min(frame.width, frame.height) < measure->smallest_side) return std::nullopt;
  const Cell cell = measure->take(frame)[place];
  if (const auto* value = std::get_if<int64_t>(&cell)) return *value;
  if (const auto* value = std::get_if<bool>(&cell)) return *value ? 1 : 0;
  return std::nullopt;
}

Defects find_defects(const Frame& frame) {
  Defects found;
  found.background = reference_level(frame);
  uint8_t *marks = nullptr, *columns = nullptr, *rows = nullptr;
  uint32_t column_pixels = 0, row_pixels = 0;
  uint32_t result = FP_GetBadPixelsNum(frame.data(), frame.width, frame.height, &found.pixels, &marks);
  found.marks.reset(marks);
  check_result(frame.name, "FP_GetBadPixelsNum", result);
  result = CheckBadLine(frame.data(), frame.width, frame.height, found.background, &column_pixels, &row_pixels,
                        &columns, &rows);
  found.columns.reset(columns);
  found.rows.reset(rows);
  check_result(frame.name, "CheckBadLine", result);
  found.line_pixels = column_pixels + row_pixels;
  found.bad_columns = count_lines(found.columns, frame.width);
  found.bad_rows = count_lines(found.rows, frame.height);
  return found;
}

std::vector<uint8_t> pixel_marks(const Frame& frame, const Defects& defects) {
  std::vector<uint8_t> marks(frame.pixels.size());
  for (size_t i = 0; i < marks.size(); i++) {
    const size_t x = i % static_cast<size_t>(frame.width), y = i / static_cast<size_t>(frame.width);
    if (defects.columns[x] == 0 && defects.rows[y] == 0) marks[i] = defects.marks[i];
  }
  return marks;
}

Bubbles find_bubbles(const Frame& frame) {
  Bubbles bubbles;
  uint8_t* image = nullptr;
  const uint32_t result = CreateBubbleImage(frame.data(), static_cast<uint32_t>(frame.width),
                                            static_cast<uint32_t>(frame.height), &bubbles.pixels, &image);
  bubbles.image.reset(image);
  if (result == QUO_NO_MEMORY) throw refusal(frame.name, "CreateBubbleImage", result, kNoBlock);
  check_result(frame.name, "CreateBubbleImage", result);
  return bubbles;
}

Blocks find_blocks(const Frame& frame) {
  Blocks blocks;
  quo_block_record* records = nullptr;
  const uint32_t result = BlockOrientation_MCU(frame.data(), frame.width, frame.height, &records, &blocks.count);
  blocks.records.reset(records);
  check_result(frame.name, "BlockOrientation_MCU", result);
  return blocks;
}

int32_t block_side(const Frame& frame) {
  const int32_t shorter = std::min(frame.width, frame.height);
  return shorter >= 192 ? 16 : shorter >= 160 ? 10 : 8;
}

}  // namespace quofp
