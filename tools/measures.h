// What the library finds out about a frame, one call each, for the commands that show it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "frame_io.h"
#include "owned.h"

namespace quofp {

/** Background and finger. */
struct Finger {
  uint8_t background = 255;  // gray below which a block is finger
  bool background_found = false;
  uint8_t coverage = 0;         // percent of blocks that are finger
  std::optional<uint8_t> mean;  // of these blocks; none without such a block
  int32_t centre_x = 0;         // mean top left corner of these blocks
  int32_t centre_y = 0;
};

/** Both quality scores. */
struct Scores {
  uint8_t quality = 0;               // of the sensor, 0 to 100
  uint8_t field_quality = 0;         // from the orientation field, 0 to 100
  uint8_t area = 0;                  // percent of blocks that are not background
  uint8_t bright = 0;                // percent of their pixels that are bright
  std::optional<uint8_t> mean_gray;  // of these blocks; none without such a block
};

struct SignalToNoise {
  uint8_t snr = 0;
  uint8_t signal = 0;
  uint8_t noise = 0;
};

struct Defects {
  uint8_t background = 255;  // level that the frame is judged against
  uint32_t pixels = 0;       // of all kinds
  uint32_t line_pixels = 0;  // of columns and rows
  Owned<uint8_t> columns;    // 1 where broken
  Owned<uint8_t> rows;
  Owned<uint8_t> marks;  // of all kinds

  /** The marks of pixels that lie on no broken line. */
  std::vector<uint8_t> pixel_marks(const Frame& frame) const;
};

struct Bubbles {
  uint32_t pixels = 0;
  Owned<uint8_t> image;  // none when no pixel is bright
};

/** Finds the finger below a background value, 0 for the one that the frame shows. @throws Failure */
Finger find_finger(const Frame& frame, uint8_t background = 0);

/** The rest of what is measured. @throws Failure when the library refuses the frame */
Scores score(const Frame& frame);
SignalToNoise measure_noise(const Frame& frame);
Defects find_defects(const Frame& frame);
Bubbles find_bubbles(const Frame& frame);

}  // namespace quofp
