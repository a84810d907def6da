#include "pictures.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "failure.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

constexpr int32_t kAreaBlock = 8;           // side of the blocks that coverage is measured in
constexpr double kStepOfDirections = 22.5;  // degrees
constexpr Colour kDim = colours::kBlue.with_opacity(0.35);

// Blocks of the frame that share a stroke.
struct Grid {
  int32_t columns;
  int32_t rows;
  int32_t block_width;
  int32_t block_height;
  std::vector<quo_block_record> blocks;

  Grid(const Frame& frame, const Strokes& strokes)
      : columns(frame.width / strokes.spacing),
        rows(frame.height / strokes.spacing),
        block_width(columns == 0 ? 0 : frame.width / columns / 2 * 2),
        block_height(rows == 0 ? 0 : frame.height / rows / 2 * 2),
        blocks(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {
    check_result(frame.name, "BlockOrientation",
                 BlockOrientation(frame.data(), frame.width, frame.height, blocks.data(), columns, rows, strokes.radius,
                                  nullptr));
  }
};

// A stroke through (x, y), on a white one that keeps it apart from the ridges.
void draw_stroke(Canvas& canvas, double x, double y, double length, double degrees, double thickness) {
  const double angle = degrees * std::numbers::pi / 180;
  const double dx = length / 2 * std::cos(angle), dy = length / 2 * std::sin(angle);
  canvas.draw_line(x - dx, y - dy, x + dx, y + dy, colours::kPaper.with_opacity(0.7), thickness + 2);
  canvas.draw_line(x - dx, y - dy, x + dx, y + dy, colours::kRed, thickness);
}

}  // namespace

Frame orientation_field(const Frame& frame, int32_t radius) {
  Frame field(frame.name, frame.width, frame.height);
  if (Orientation(frame.data(), field.data(), frame.width, frame.height, radius) == 0) {
    throw refusal(frame.name, "Orientation", 0, "the frame is smaller than 2x2, or memory is short");
  }
  return field;
}

Canvas draw_strokes(const Frame& frame, const Frame& field, const Strokes& strokes, int zoom) {
  const Grid grid(frame, strokes);
  const double length = 0.75 * zoom * std::min(grid.block_width, grid.block_height);
  Canvas canvas(frame, zoom);
  auto block = grid.blocks.begin();
  for (int32_t row = 0; row < grid.rows; row++) {
    for (int32_t column = 0; column < grid.columns; column++, block++) {
      if (block->direction < 0 && !strokes.everywhere) continue;
      const int32_t x = column * grid.block_width + grid.block_width / 2;
      const int32_t y = row * grid.block_height + grid.block_height / 2;
      draw_stroke(canvas, x * zoom, y * zoom, length, field.at(x, y), std::max(1.5, zoom * 0.4));
    }
  }
  return canvas;
}

Canvas draw_valid_area(const Frame& frame, uint8_t background, int zoom) {
  Canvas canvas(frame, zoom);
  const double side = kAreaBlock * zoom;
  Frame block(frame.name, kAreaBlock, kAreaBlock);
  for (int32_t y = 0; y + kAreaBlock <= frame.height; y += kAreaBlock) {
    for (int32_t x = 0; x + kAreaBlock <= frame.width; x += kAreaBlock) {
      for (int32_t row = 0; row < kAreaBlock; row++) {
        std::copy_n(&frame.pixels[static_cast<size_t>((y + row) * frame.width + x)], kAreaBlock, &block.at(0, row));
      }
      uint8_t coverage = 0;
      GetValidArea(block.data(), kAreaBlock, kAreaBlock, background, &coverage, nullptr, nullptr, nullptr);
      if (coverage == 0) canvas.fill_rectangle({x * 1.0 * zoom, y * 1.0 * zoom, side, side}, kDim);
    }
  }
  uint8_t coverage = 0;
  int32_t x = 0, y = 0;
  GetValidArea(frame.data(), frame.width, frame.height, background, &coverage, nullptr, &x, &y);
  if (coverage == 0) return canvas;
  // The library's centre is that of the blocks' top left corners.
  const double centre_x = (x + kAreaBlock / 2) * zoom, centre_y = (y + kAreaBlock / 2) * zoom;
  canvas.draw_circle(centre_x, centre_y, 7, colours::kPaper, 5);
  canvas.draw_circle(centre_x, centre_y, 7, colours::kRed, 2.5);
  return canvas;
}

Canvas draw_blocks(const Frame& frame, const Blocks& blocks, int zoom) {
  Canvas canvas(frame, zoom);
  const int32_t columns = std::max(1, frame.width / block_side(frame));
  const double side = block_side(frame) * zoom;
  int32_t number = 0;
  for (const quo_block_record& record : blocks.span()) {
    const double x = number % columns * side, y = number / columns * side;
    number++;
    if (record.direction < 0) {
      canvas.fill_rectangle({x, y, side, side}, kDim);
    } else if (record.direction == 0) {
      canvas.draw_circle(x + side / 2, y + side / 2, side / 5, colours::kPaper.with_opacity(0.7), 3.5);
      canvas.draw_circle(x + side / 2, y + side / 2, side / 5, colours::kRed, 1.5);
    } else {  // counted counter-clockwise
      draw_stroke(canvas, x + side / 2, y + side / 2, 0.75 * side, -kStepOfDirections * (record.direction - 1),
                  std::max(1.5, zoom * 0.4));
    }
  }
  return canvas;
}

Canvas draw_defects(const Frame& frame, const Defects& defects, int zoom) {
  std::vector<uint8_t> lines(frame.pixels.size());
  for (size_t i = 0; i < lines.size(); i++) {
    const size_t x = i % static_cast<size_t>(frame.width), y = i / static_cast<size_t>(frame.width);
    lines[i] = defects.columns[x] | defects.rows[y];
  }
  Canvas canvas(frame, zoom);
  canvas.draw_marks(lines, frame.width, frame.height, 0, 0, zoom, colours::kBlue);
  canvas.draw_marks(pixel_marks(frame, defects), frame.width, frame.height, 0, 0, zoom, colours::kRed);
  return canvas;
}

Canvas draw_bubbles(const Frame& frame, const Bubbles& bubbles, int zoom) {
  Canvas canvas(frame, zoom);
  if (bubbles.image) {
    canvas.draw_marks({bubbles.image.get(), frame.pixels.size()}, frame.width, frame.height, 0, 0, zoom,
                      colours::kRed.with_opacity(0.7));
  }
  return canvas;
}

}  // namespace quofp
