// quofp op: one image operator of the library's toolbox on frames.
#include <iostream>
#include <optional>

#include "commands.h"
#include "inputs.h"
#include "quoFPAlg.h"
#include "table.h"

namespace quofp {
namespace {

struct Operator;

struct Options {
  Inputs inputs;
  Output output;
  Format format = Format::kTable;
  const Operator* chosen = nullptr;

  int32_t threshold = 128;
  int32_t window = 15;
  std::optional<Size> window_size;
  int32_t offset = 3;
  int32_t block = 16;
  int32_t border = 0;
  int32_t radius = 3;
  std::string directions;
  int32_t seed_x = 0;
  int32_t seed_y = 0;

  Size window_or_default() const { return window_size.value_or(Size{15, 15}); }
};

/** What an operator counted or measured, where it does. */
using Count = std::optional<int64_t>;

/** An operator under its exported name. */
struct Operator {
  const char* name;
  const char* summary;
  void (*define)(CLI::App& command, Options& options);  // its own options
  Count (*apply)(Frame& frame, const Options& options);
};

Failure refused(const Frame& frame, const char* function, const char* meaning) {
  return refusal(frame.name, function, 0, meaning);
}

int32_t pixel_count(const Frame& frame) { return static_cast<int32_t>(frame.pixels.size()); }

void no_options(CLI::App&, Options&) {}

void threshold_option(CLI::App& command, Options& options) {
  add_number_option(command, "--threshold", options.threshold, 0, 255, "gray level; pixels above it are bright");
}

void window_option(CLI::App& command, Options& options) {
  add_size_option(command, "--window", options.window_size, "window around each pixel [15x15]");
}

Count apply_median(Frame& frame, const Options&) {
  MedianFilter(frame.data(), frame.data(), frame.width, frame.height);
  return {};
}

Count apply_binary(Frame& frame, const Options& options) {
  BinaryThreshold(frame.data(), pixel_count(frame), static_cast<uint8_t>(options.threshold));
  return {};
}

void adaptive_options(CLI::App& command, Options& options) {
  add_number_option(command, "--window", options.window, 1, 1024, "side of the window around each pixel");
  add_number_option(command, "--below-mean", options.offset, -255, 255, "gray levels taken off the local mean");
}

Count apply_adaptive(Frame& frame, const Options& options) {
  const Frame source = frame;
  AdaptiveThreshold(source.data(), frame.data(), frame.width, frame.height, options.window, options.offset);
  return {};
}

Count apply_segment(Frame& frame, const Options& options) {
  return FingerprintImageSegment(frame.data(), frame.width, frame.height, options.threshold);
}

// Pixels that the stretches do not write keep their values.
Count apply_area_stretch(Frame& frame, const Options& options) {
  const Frame source = frame;
  const Size window = options.window_or_default();
  return AreaGrayStretch(source.data(), frame.data(), frame.width, frame.height, window.width, window.height);
}

void block_option(CLI::App& command, Options& options) {
  add_number_option(command, "--block", options.block, 1, 1024, "side of the blocks");
}

Count apply_block_stretch(Frame& frame, const Options& options) {
  const Frame source = frame;
  return BlockGrayStretch(source.data(), frame.data(), frame.width, frame.height, options.block, options.block);
}

Count apply_valid_stretch(Frame& frame, const Options&) {
  if (ValidAreaGrayStretch(frame.data(), frame.width, frame.height) == 0) {
    throw refused(frame, "ValidAreaGrayStretch", "no pixel is below 255, or memory is short");
  }
  return {};
}

Count apply_balance(Frame& frame, const Options& options) {
  const Frame source = frame;
  const Size window = options.window_or_default();
  if (LocalGrayBalance(source.data(), frame.data(), frame.width, static_cast<uint32_t>(frame.height), window.width,
                       window.height) == 0) {
    throw refused(frame, "LocalGrayBalance",
                  "the frame or the window is below 3x3, the frame has no contrast, or memory is short");
  }
  return {};
}

void enhance_options(CLI::App& command, Options& options) {
  auto* const file =
      command.add_option("--directions", options.directions, "frame of directions in degrees [those of Orientation]");
  file->type_name("FILE");
  add_number_option(command, "--radius", options.radius, 0, 100, "window of Orientation, in half-size pixels")
      ->excludes(file);
}

Frame directions_of(const Frame& frame, const Options& options) {
  if (!options.directions.empty()) {
    Reading plain;  // degrees, which are neither cropped nor inverted
    plain.raw = options.inputs.reading.raw;
    Frame field = read_frame(options.directions, plain);
    if (field.width == frame.width && field.height == frame.height) return field;
    throw file_failure(options.directions, "is not of the size of " + frame.name);
  }
  Frame field(frame.name, frame.width, frame.height);
  if (Orientation(frame.data(), field.data(), frame.width, frame.height, options.radius) == 0) {
    throw refused(frame, "Orientation", "the frame is smaller than 2x2, or memory is short");
  }
  return field;
}

Count apply_enhance(Frame& frame, const Options& options) {
  const Frame directions = directions_of(frame, options);
  if (OrientEnhance(frame.data(), directions.data(), frame.width, frame.height) == 0) {
    throw refused(frame, "OrientEnhance", "memory is short");
  }
  return {};
}

void border_option(CLI::App& command, Options& options) {
  add_number_option(command, "--border", options.border, 0, kMaxSide, "lines at each edge that are left out");
}

Count apply_erode(Frame& frame, const Options& options) {
  const Frame mask = frame;
  frame = Frame(mask.name, mask.width, mask.height);
  uint32_t count = 0;
  MyCrossErode(mask.data(), frame.data(), mask.width, mask.height, options.border, &count);
  return count;
}

void seed_options(CLI::App& command, Options& options) {
  add_number_option(command, "--x", options.seed_x, 0, kMaxSide, "column of the seed");
  add_number_option(command, "--y", options.seed_y, 0, kMaxSide, "row of the seed");
}

Count apply_grow(Frame& frame, const Options& options) {
  constexpr uint32_t kLabel = 255;
  const Frame source = frame;
  frame = Frame(source.name, source.width, source.height);
  uint32_t count = 0;
  const uint32_t result = RegionGrowByEightNeighbor(
      options.seed_x, options.seed_y, kLabel, source.data(), static_cast<uint32_t>(source.width),
      static_cast<uint32_t>(source.height), frame.data(), &count, nullptr, nullptr, nullptr, nullptr);
  if (result != QUO_OK) {
    throw refusal(source.name, "RegionGrowByEightNeighbor", result, "the seed is outside, or memory is short");
  }
  return count;
}

constexpr Operator kOperators[] = {
    {"MedianFilter", "Removes single outliers: the 3 x 3 median", no_options, apply_median},
    {"BinaryThreshold", "White above a gray level, black elsewhere", threshold_option, apply_binary},
    {"AdaptiveThreshold", "White above the local mean, black elsewhere", adaptive_options, apply_adaptive},
    {"FingerprintImageSegment", "Marks the background around the print white", threshold_option, apply_segment},
    {"AreaGrayStretch", "Stretches each pixel over the range of its window", window_option, apply_area_stretch},
    {"BlockGrayStretch", "Stretches each block over its own range", block_option, apply_block_stretch},
    {"ValidAreaGrayStretch", "Stretches the whole frame over its range", no_options, apply_valid_stretch},
    {"LocalGrayBalance", "Evens out brightness and contrast", window_option, apply_balance},
    {"OrientEnhance", "Sharpens ridges along their directions", enhance_options, apply_enhance},
    {"MyCrossErode", "Keeps the white pixels with four white neighbours", border_option, apply_erode},
    {"RegionGrowByEightNeighbor", "The region of one gray around a seed, in white", seed_options, apply_grow},
};

void define(CLI::App& command, Options& options) {
  command.require_subcommand(1);
  for (const Operator& entry : kOperators) {
    CLI::App* const own = command.add_subcommand(entry.name, entry.summary);
    add_inputs(*own, options.inputs);
    add_output(*own, options.output, "the result (.png, .pgm or .raw), or a folder for several");
    entry.define(*own, options);
    add_format_option(*own, options.format);
    own->callback([&options, &entry] { options.chosen = &entry; });
  }
}

Exit run(const Options& options) {
  const Outputs outputs(options.inputs, options.output);
  Table table({{"file"}, {"operator"}, {"count"}, {"output"}});
  const Exit exit = for_each_frame(options.inputs, [&](Frame& frame) {
    const Count count = options.chosen->apply(frame, options);
    const std::string& output = outputs.path_for(frame.name);
    write_frame(output, frame);
    table.add({frame.name, std::string(options.chosen->name), optional_cell(count), output});
    return Exit::kDone;
  });
  if (!table.empty()) table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_op(Commands& commands) {
  commands.add<Options>(
      {.name = "op",
       .summary = "Runs one image operator on frames",
       .examples = {"quofp op MedianFilter frame.png -o median.png",
                    "quofp op AdaptiveThreshold frame.png -o ridges.png --window 15 --below-mean 3",
                    "quofp op OrientEnhance frame.png -o sharp.png --radius 3",
                    "quofp op AreaGrayStretch lot/*.png -o stretched/ --window 21x21 --format csv",
                    "quofp op LocalGrayBalance --help"},
       .details =
           "Columns: count, what the operator counts: pixels stretched, kept or grown, the running count of the\n"
           "segmentation, a dash for the others; output, the file written."},
      define, run);
}

}  // namespace quofp
