#include "report/frame_report.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "formats/png.h"
#include "measures.h"
#include "owned.h"
#include "quoFPAlg.h"
#include "report/base64.h"
#include "sp_template.h"

namespace quofp {
namespace {

constexpr int32_t kThumbnailSide = 72;  // at most, pixels
constexpr int32_t kBlock = 8;           // side of blocks that are finger or not, and of background patches
constexpr int32_t kPatchInset = 2;      // from a background patch to the edges of the frame
constexpr uint8_t kBrightPatch = 160;   // a patch brighter than this is bright enough on its own

std::string picture(const Frame& frame) { return "data:image/png;base64," + base64(encode_png(frame)); }

// Halved until it is small enough.
Frame thumbnail(Frame frame) {
  while (std::max(frame.width, frame.height) > kThumbnailSide && std::min(frame.width, frame.height) >= 2) {
    Frame half(frame.name, frame.width / 2, frame.height / 2);
    ZoomImg(frame.data(), half.data(), frame.width, frame.height, 1);
    frame = std::move(half);
  }
  return frame;
}

Json marked_lines(const Owned<uint8_t>& marks, int32_t lines) {
  Json list = Json::array();
  for (int32_t i = 0; i < lines; i++) {
    if (marks[static_cast<size_t>(i)] != 0) list.push_back(i);
  }
  return list;
}

// Stretches of marked pixels of a row: y, x, length of each.
Json runs_of(const uint8_t* marks, int32_t width, int32_t height) {
  Json runs = Json::array();
  for (int32_t y = 0; y < height; y++) {
    const uint8_t* const row = marks + ptrdiff_t{y} * width;
    for (int32_t x = 0; x < width;) {
      const int32_t start = x;
      while (x < width && row[x] != 0) x++;
      if (x > start) runs.insert(runs.end(), {y, start, x - start});
      if (x == start) x++;
    }
  }
  return runs;
}

std::array<uint8_t, kBlock * kBlock> block_at(const Frame& frame, int32_t left, int32_t top) {
  std::array<uint8_t, kBlock * kBlock> block;
  for (int32_t y = 0; y < kBlock; y++) {
    std::copy_n(frame.data() + ptrdiff_t{top + y} * frame.width + left, kBlock,
                &block[static_cast<size_t>(y * kBlock)]);
  }
  return block;
}

// The finger as the report shows it: below the background value that was given, or else the estimated one.
struct Finger {
  uint8_t background = 0;
  uint8_t coverage = 0;  // percent
  uint8_t mean = 255;    // 255 without finger
  int32_t centre_x = 0;
  int32_t centre_y = 0;
};

Finger find_finger(const Frame& frame, const Cleaning& cleaning) {
  Finger finger;
  finger.background = static_cast<uint8_t>(measure(frame, cleaning).background);
  GetValidArea(frame.data(), frame.width, frame.height, finger.background, &finger.coverage, &finger.mean,
               &finger.centre_x, &finger.centre_y);
  return finger;
}

Json valid_blocks(const Frame& frame, const Finger& finger) {
  const int32_t columns = frame.width / kBlock, rows = frame.height / kBlock;
  std::vector<uint8_t> valid(static_cast<size_t>(columns) * static_cast<size_t>(rows));
  for (int32_t row = 0; row < rows; row++) {
    for (int32_t column = 0; column < columns; column++) {
      const auto block = block_at(frame, column * kBlock, row * kBlock);
      GetValidArea(block.data(), kBlock, kBlock, finger.background, &valid[static_cast<size_t>(row * columns + column)],
                   nullptr, nullptr, nullptr);
    }
  }
  Json json = {{"runs", runs_of(valid.data(), columns, rows)}};
  if (finger.mean != 255) json["centre"] = {finger.centre_x, finger.centre_y};
  return json;
}

// Whether the library takes a patch for background: it is asked about a frame with that patch in one corner and, in the
// others, something that is none itself and no darker than the darkest patch counts.
bool is_background(const Frame& patch, const Frame& darkest) {
  constexpr int32_t kSide = 2 * (kPatchInset + kBlock);
  Frame frame(patch.name, kSide, kSide);
  for (int32_t y = 0; y < 2 * kBlock; y++) {
    for (int32_t x = 0; x < 2 * kBlock; x++) {
      const Frame& source = x < kBlock && y < kBlock ? patch : darkest;
      frame.at(kPatchInset + x, kPatchInset + y) = source.at(x % kBlock, y % kBlock);
    }
  }
  return FindBgValue(frame.data(), kSide, kSide, nullptr) == 1;
}

Json background_patches(const Frame& frame) {
  if (std::min(frame.width, frame.height) < kPatchInset + kBlock) return {};
  const int32_t right = frame.width - kPatchInset - kBlock, bottom = frame.height - kPatchInset - kBlock;
  const struct {
    const char* name;
    int32_t x, y;
  } places[] = {{"top left", kPatchInset, kPatchInset},
                {"top right", right, kPatchInset},
                {"bottom left", kPatchInset, bottom},
                {"bottom right", right, bottom}};
  std::vector<Frame> patches;
  Frame darkest(frame.name, kBlock, kBlock, kBrightPatch);
  const auto sum_of = [](const Frame& patch) {
    int sum = 0;
    for (const uint8_t pixel : patch.pixels) sum += pixel;
    return sum;
  };
  for (const auto& place : places) {
    const auto block = block_at(frame, place.x, place.y);
    Frame& patch = patches.emplace_back(frame.name, kBlock, kBlock);
    patch.pixels.assign(block.begin(), block.end());
    if (sum_of(patch) < sum_of(darkest)) darkest = patch;
  }
  Json json = Json::array();
  for (size_t i = 0; i < patches.size(); i++) {
    json.push_back({{"name", places[i].name},
                    {"x", places[i].x},
                    {"y", places[i].y},
                    {"mean", sum_of(patches[i]) / (kBlock * kBlock)},
                    {"variance", Variance(patches[i].data(), kBlock * kBlock)},
                    {"background", is_background(patches[i], darkest)}});
  }
  return json;
}

Json direction_blocks(const Frame& frame) {
  const Blocks blocks = find_blocks(frame);
  const int32_t side = block_side(frame);
  Json directions = Json::array(), deviations = Json::array();
  for (const quo_block_record& block : blocks.span()) {
    directions.push_back(block.direction);
    deviations.push_back(static_cast<int>(block.deviation));
  }
  return {{"side", side}, {"columns", frame.width / side}, {"direction", directions}, {"deviation", deviations}};
}

// What was taken off each column. Pixels that met the end of the scale moved less, bright ones not at all.
Json column_offsets(const Frame& before, const Frame& after) {
  Json offsets = Json::array();
  for (int32_t x = 0; x < before.width; x++) {
    int offset = 0;
    for (int32_t y = 0; y < before.height; y++) {
      const int change = before.at(x, y) - after.at(x, y);
      if (std::abs(change) > std::abs(offset)) offset = change;
    }
    offsets.push_back(offset);
  }
  return offsets;
}

Json gray_levels(const Frame& frame) {
  std::array<uint32_t, 256> bins;
  CalcHistogram(frame.data(), frame.width * frame.height, bins.data(), 256);
  return bins;
}

// The profiles as they are compared: each a line and runs of value and count.
Json template_profiles(const Frame& frame) {
  uint8_t* bytes = nullptr;
  uint32_t size = 0;
  check_result(frame.name, "ExtractSpTemplates",
               ExtractSpTemplates(frame.data(), frame.width, frame.height, &bytes, &size));
  const Owned<uint8_t> record(bytes);
  Json profiles = Json::array();
  size_t at = 3;  // after version and payload length
  for (size_t section = 0; section < 6; section++) {
    const size_t length = static_cast<size_t>(record[at] << 8 | record[at + 1]);
    Json runs = Json::array();
    for (size_t i = at + 2; i < at + 2 + length;) {
      const size_t start = i;
      while (i < at + 2 + length && record[i] == record[start]) i++;
      runs.insert(runs.end(), {Json(record[start]), Json(i - start)});
    }
    const ProfileLine line = profile_line(section, {frame.width, frame.height});
    profiles.push_back({{"row", line.is_row}, {"at", line.position}, {"runs", std::move(runs)}});
    at += 2 + length;
  }
  return profiles;
}

// The frame after each step of the cleaning, as far as the library goes.
void add_cleaned(Json& details, const Frame& raw, const Cleaning& cleaning) {
  details["images"]["raw"] = picture(raw);
  Frame bordered = raw;
  FillBorders(bordered.data(), raw.width, raw.height, cleaning.borders);
  if (cleaning.borders != 0) details["images"]["borders"] = picture(bordered);
  Frame striped = bordered;
  Findings findings{};
  clean(striped, {.stage = Stage::kStripes}, findings);
  Frame balanced = raw;
  clean(balanced, cleaning, findings);  // refuses a frame before anything is shown that it would not reach
  details["images"]["stripes"] = picture(striped);
  details["offsets"] = column_offsets(bordered, striped);
  details["images"]["balance"] = picture(balanced);
}

bool has_template(const Frame& frame) { return std::min(frame.width, frame.height) > 2 * kProfileMargin; }

// Figures under the names of their columns; those that a frame does not have are left out.
void add_cells(Json& json, const std::vector<Cell>& cells) {
  auto cell = cells.begin();
  for (const Measure* const measure : all_measures()) {
    for (const Column& column : measure->columns) {
      if (const auto* const number = std::get_if<int64_t>(&*cell)) json[column.name] = *number;
      cell++;
    }
  }
}

// Calls `work`; what the library refuses becomes a problem.
template <typename Work>
void gather(std::vector<Failure>& problems, Work work) {
  try {
    work();
  } catch (const Failure& failure) {
    problems.push_back(failure);
  }
}

}  // namespace

FrameRow frame_row(const Frame& frame, const Cleaning& cleaning) {
  FrameRow row;
  Json& json = row.json = {{"file", frame.name}};
  const Frame small = thumbnail(frame);
  json["thumbnail"] = {{"src", picture(small)}, {"width", small.width}, {"height", small.height}};
  std::string error;
  add_cells(json, measure_all(frame, error));
  if (!error.empty()) row.problems.emplace_back(Exit::kRefused, frame.name, error);
  gather(row.problems, [&] {
    const Finger finger = find_finger(frame, cleaning);
    json["background"] = finger.background;
    json["coverage"] = finger.coverage;
    json["mean"] = finger.mean == 255 ? Json() : Json(finger.mean);
  });
  if (has_template(frame)) {
    gather(row.problems, [&] { json["template_size"] = template_of(frame).bytes.size(); });
  }
  json["gain"] = nullptr;  // until the cleaning has come so far
  gather(row.problems, [&] {
    Frame cleaned = frame;
    Findings findings{};
    clean(cleaned, cleaning, findings);
    json["gain"] = findings.gain.value();
  });
  json["result"] = row.problems.empty() ? "done" : "refused";
  Json& problems = json["problems"] = Json::array();
  for (const Failure& problem : row.problems) problems.push_back(problem.reason());
  return row;
}

Json unreadable_row(const Failure& problem) {
  return {{"file", problem.subject()}, {"result", "unreadable"}, {"problems", Json::array({problem.reason()})}};
}

Json frame_details(const Frame& frame, const Cleaning& cleaning) {
  Json details;
  std::vector<Failure> known;  // the row has told them
  gather(known, [&] { add_cleaned(details, frame, cleaning); });
  gather(known, [&] { details["blocks"] = direction_blocks(frame); });
  gather(known, [&] { details["valid"] = valid_blocks(frame, find_finger(frame, cleaning)); });
  details["patches"] = background_patches(frame);
  gather(known, [&] {
    const Defects defects = find_defects(frame);
    details["defects"] = {{"columns", marked_lines(defects.columns, frame.width)},
                          {"rows", marked_lines(defects.rows, frame.height)},
                          {"runs", runs_of(pixel_marks(frame, defects).data(), frame.width, frame.height)}};
  });
  gather(known, [&] {
    const Bubbles bubbles = find_bubbles(frame);
    details["bubbles"] = bubbles.image ? runs_of(bubbles.image.get(), frame.width, frame.height) : Json::array();
  });
  details["histogram"] = gray_levels(frame);
  if (has_template(frame)) gather(known, [&] { details["profiles"] = template_profiles(frame); });
  return details;
}

}  // namespace quofp
