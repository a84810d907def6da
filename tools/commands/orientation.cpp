// quofp orientation: the ridge orientations of a frame, as strokes over it or as bare degrees.
#include "commands.h"
#include "inputs.h"
#include "pictures.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  std::string output;
  Strokes strokes;
  int32_t zoom = 0;
  bool map = false;
};

void define(CLI::App& command, Options& options) {
  add_input(command, options.inputs);
  command.add_option("-o,--output", options.output, "the picture, PNG; with --map a frame (.png, .pgm or .raw)")
      ->required()
      ->type_name("FILE");
  add_number_option(command, "--radius", options.strokes.radius, 0, 100,
                    "averages over 2 N + 1 pixels of the half-size frame each way");
  auto* const map = command.add_flag("--map", options.map, "writes the degrees, 0 to 179, as a frame instead");
  add_number_option(command, "--spacing", options.strokes.spacing, 2, 64, "frame pixels from stroke to stroke")
      ->excludes(map);
  add_number_option(command, "--zoom", options.zoom, 0, 16,
                    "picture pixels per frame pixel; 0 by the size of the frame")
      ->excludes(map);
  command.add_flag("--everywhere", options.strokes.everywhere, "draws strokes on bright flat blocks, too")
      ->excludes(map);
}

Exit run(const Options& options) {
  const Frame frame = options.inputs.read_only();
  const Frame field = orientation_field(frame, options.strokes.radius);
  if (options.map) {
    write_frame(options.output, field);
  } else {
    const int zoom = options.zoom != 0 ? options.zoom : fitting_zoom(frame.width, frame.height, 960);
    draw_strokes(frame, field, options.strokes, zoom).save(options.output);
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
