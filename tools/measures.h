// What the library says about a frame, in groups of figures that several commands print.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "frame_io.h"
#include "owned.h"
#include "table.h"

namespace quofp {

/** Figures that are measured together. */
struct Measure {
  std::vector<Column> columns;
  /** A cell for each column. @throws Failure when the library refuses the frame */
  std::vector<Cell> (*take)(const Frame& frame);
  /** Frames that are narrower or lower have none. */
  int32_t smallest_side = 0;
};

const Measure& finger_measure();       // size, background, coverage, place and gray of the finger
const Measure& quality_measure();      // both scores
const Measure& block_measure();        // blocks with finger, and the direction that most of them have
const Measure& snr_measure();          // signal and noise
const Measure& defect_measure();       // broken lines and pixels
const Measure& bubble_measure();       // bright blobs
const Measure& calibration_measure();  // what settings are judged by

/** All of them, in this order. No name occurs twice. */
const std::vector<const Measure*>& all_measures();

/** Columns of a row with everything about a frame: its name as "file", all measures, and "error". */
const std::vector<Column>& frame_columns();

/** A cell for each column of all measures, empty where a frame is too small, and where the library refused.
 *  @param error  receives the first refusal, if any */
std::vector<Cell> measure_all(const Frame& frame, std::string& error);

/** The number in a column, which must be one of a measure, for a frame. Nothing where the frame has none.
 *  @throws Failure when the library refuses the frame */
std::optional<int64_t> figure_of(const Frame& frame, const std::string& column);

/** Whether there is such a column with numbers. */
bool is_figure(const std::string& column);

/** Broken lines and pixels of a sensor. */
struct Defects {
  uint8_t background = 255;  // that the frame is judged against
  uint32_t pixels = 0;       // of all kinds
  uint32_t line_pixels = 0;  // of columns and rows
  Owned<uint8_t> columns;    // 1 where broken
  Owned<uint8_t> rows;
  Owned<uint8_t> marks;  // of all kinds
  int64_t bad_columns = 0;
  int64_t bad_rows = 0;
};

/** @throws Failure */
Defects find_defects(const Frame& frame);

/** The marks of a frame's defects that lie on no broken line. */
std::vector<uint8_t> pixel_marks(const Frame& frame, const Defects& defects);

struct Bubbles {
  uint32_t pixels = 0;
  Owned<uint8_t> image;  // none when no pixel is bright
};

/** @throws Failure */
Bubbles find_bubbles(const Frame& frame);

/** Blocks of FP_ImageQuality(). */
struct Blocks {
  int32_t count = 0;
  Owned<quo_block_record> records;

  std::span<const quo_block_record> span() const { return {records.get(), static_cast<size_t>(count)}; }
};

/** @throws Failure */
Blocks find_blocks(const Frame& frame);

/** Side of these blocks. */
int32_t block_side(const Frame& frame);

}  // namespace quofp
