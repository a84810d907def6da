// Frames with what the library found on them.
#pragma once

#include <cstdint>
#include <vector>

#include "canvas.h"
#include "frame_io.h"
#include "measures.h"

namespace quofp {

/** Ridge orientation of every pixel in degrees. @throws Failure when the library refuses the frame */
Frame orientation_field(const Frame& frame, int32_t radius);

/** How orientations are drawn. */
struct Strokes {
  int32_t radius = 3;   // of the field
  int32_t spacing = 8;  // frame pixels from stroke to stroke
  bool everywhere = false;
};

/** A stroke along the orientation at the centre of every block that is not background. */
Canvas draw_strokes(const Frame& frame, const Frame& field, const Strokes& strokes, int zoom);

/** The blocks of 8 x 8 pixels that count as finger against a background value, the others dimmed, and their centre. */
Canvas draw_valid_area(const Frame& frame, uint8_t background, int zoom);

/** The blocks of the sensor score: background dimmed, the others with their direction, or a ring where there is
 *  none. */
Canvas draw_blocks(const Frame& frame, const Blocks& blocks, int zoom);

/** Lines let what lies under them show; bad pixels are small and solid. */
Canvas draw_defects(const Frame& frame, const Defects& defects, int zoom);

Canvas draw_bubbles(const Frame& frame, const Bubbles& bubbles, int zoom);

}  // namespace quofp
