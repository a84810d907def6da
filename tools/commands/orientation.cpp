// quofp orientation: the ridge orientations of a frame, as strokes over it or as bare degrees.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "canvas.h"
#include "commands.h"
#include "inputs.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  std::string output;
  int32_t radius = 3;
  int32_t spacing = 8;
  int32_t zoom = 0;
  bool everywhere = false;
  bool map = false;
};

void define(CLI::App& command, Options& options) {
  add_input(command, options.inputs);
  command.add_option("-o,--output", options.output, "the picture, PNG; with --map a frame (.png, .pgm or .raw)")
      ->required()
      ->type_name("FILE");
  add_number_option(command, "--radius", options.radius, 0, 100,
                    "averages over 2 N + 1 pixels of the half-size frame each way");
  auto* const map = command.add_flag("--map", options.map, "writes the degrees, 0 to 179, as a frame instead");
  add_number_option(command, "--spacing", options.spacing, 2, 64, "frame pixels from stroke to stroke")->excludes(map);
  add_number_option(command, "--zoom", options.zoom, 0, 16,
                    "picture pixels per frame pixel; 0 by the size of the frame")
      ->excludes(map);
  command.add_flag("--everywhere", options.everywhere, "draws strokes on bright flat blocks, too")->excludes(map);
}

Frame orientation_field(const Frame& frame, int32_t radius) {
  Frame field(frame.name, frame.width, frame.height);
  if (Orientation(frame.data(), field.data(), frame.width, frame.height, radius) == 0) {
    throw refusal(frame.name, "Orientation", 0, "the frame is smaller than 2x2, or memory is short");
  }
  return field;
}

// Blocks of the frame that share a stroke.
struct Grid {
  int32_t columns;
  int32_t rows;
  int32_t block_width;
  int32_t block_height;
  std::vector<quo_block_record> blocks;

  Grid(const Frame& frame, const Options& options)
      : columns(frame.width / options.spacing),
        rows(frame.height / options.spacing),
        block_width(columns == 0 ? 0 : frame.width / columns / 2 * 2),
        block_height(rows == 0 ? 0 : frame.height / rows / 2 * 2),
        blocks(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {
    check_result(frame.name, "BlockOrientation",
                 BlockOrientation(frame.data(), frame.width, frame.height, blocks.data(), columns, rows, options.radius,
                                  nullptr));
  }
};

// A stroke through (x, y), on a white one that keeps it apart from the ridges.
void draw_stroke(Canvas& canvas, double x, double y, double length, int degrees, double thickness) {
  const double angle = degrees * std::numbers::pi / 180;
  const double dx = length / 2 * std::cos(angle), dy = length / 2 * std::sin(angle);
  canvas.draw_line(x - dx, y - dy, x + dx, y + dy, colours::kPaper.with_opacity(0.7), thickness + 2);
  canvas.draw_line(x - dx, y - dy, x + dx, y + dy, colours::kRed, thickness);
}

Canvas draw_strokes(const Frame& frame, const Frame& field, const Options& options) {
  const Grid grid(frame, options);
  const int zoom = options.zoom != 0 ? options.zoom : fitting_zoom(frame.width, frame.height, 960);
  const double length = 0.75 * zoom * std::min(grid.block_width, grid.block_height);
  Canvas canvas(frame, zoom);
  auto block = grid.blocks.begin();
  for (int32_t row = 0; row < grid.rows; row++) {
    for (int32_t column = 0; column < grid.columns; column++, block++) {
      if (block->direction < 0 && !options.everywhere) continue;
      const int32_t x = column * grid.block_width + grid.block_width / 2;
      const int32_t y = row * grid.block_height + grid.block_height / 2;
      draw_stroke(canvas, x * zoom, y * zoom, length, field.at(x, y), std::max(1.5, zoom * 0.4));
    }
  }
  return canvas;
}

Exit run(const Options& options) {
  const Frame frame = options.inputs.read_only();
  const Frame field = orientation_field(frame, options.radius);
  if (options.map) {
    write_frame(options.output, field);
  } else {
    draw_strokes(frame, field, options).save(options.output);
  }
  return Exit::kDone;
}

}  // namespace

void add_orientation(Commands& commands) {
  commands.add<Options>(
      {.name = "orientation",
       .summary = "Draws the ridge orientations of a frame",
       .examples = {"quofp orientation frame.png -o strokes.png",
                    "quofp orientation frame.png -o strokes.png --radius 6 --spacing 10 --zoom 4",
                    "quofp orientation frame.png -o degrees.pgm --map"},
       .details = "A stroke has the orientation of the pixel at its centre; blocks that are bright and flat have none. "
                  "In the\n"
                  "map 0 is horizontal, 45 falls to the right, 90 is vertical, 135 rises to the right."},
      define, run);
}

}  // namespace quofp
