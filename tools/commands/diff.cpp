// quofp diff: whether two frames are the same, and where and how much they are not.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include "canvas.h"
#include "commands.h"
#include "inputs.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  std::string first;
  std::string second;
  Reading reading;
  std::string picture;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  command.add_option("A", options.first, "a frame")->required()->type_name("FILE");
  command.add_option("B", options.second, "another frame")->required()->type_name("FILE");
  command.add_option("-o,--output", options.picture, "draws both frames and their difference into this PNG")
      ->type_name("FILE");
  add_reading_options(command, options.reading);
  add_format_option(command, options.format);
}

/** What tells two frames of one size apart. Indices are of pixels. */
struct Difference {
  std::vector<uint8_t> levels;  // of every pixel
  int64_t count = 0;
  size_t first = 0;
  size_t largest = 0;

  Difference(const Frame& a, const Frame& b) : levels(a.pixels.size()) {
    for (size_t i = 0; i < levels.size(); i++) {
      levels[i] = static_cast<uint8_t>(std::abs(a.pixels[i] - b.pixels[i]));
      if (levels[i] == 0) continue;
      if (count++ == 0) first = largest = i;
      if (levels[i] > levels[largest]) largest = i;
    }
  }
};

constexpr int kEdge = 16;   // around the picture and between frames
constexpr int kTitle = 24;  // above a frame

// Both frames and, in colours up to the largest one, how far apart their pixels are: the root, so that the least
// difference can be told from none.
Canvas draw(const Frame& a, const Frame& b, const Difference& difference) {
  const int zoom = fitting_zoom(a.width, a.height, 420), width = a.width * zoom, height = a.height * zoom;
  const int pitch = std::max(width, 140) + kEdge;
  Canvas canvas(3 * pitch + kEdge, height + 2 * kEdge + kTitle);
  const int top = kEdge + kTitle;
  const auto title = [&](int column, const std::string& text) {
    canvas.draw_text(kEdge + column * pitch, kEdge + 12, text, {.size = 13, .bold = true});
  };
  const int most = difference.levels[difference.largest];
  title(0, "first");
  title(1, "second");
  title(2, difference.count == 0 ? "no difference" : "difference, 0 to " + std::to_string(most));
  canvas.draw_frame(a, kEdge, top, zoom);
  canvas.draw_frame(b, kEdge + pitch, top, zoom);
  std::vector<double> values;
  for (const uint8_t level : difference.levels) values.push_back(std::sqrt(level));
  canvas.draw_heat_map({static_cast<double>(kEdge + 2 * pitch), static_cast<double>(top), static_cast<double>(width),
                        static_cast<double>(height)},
                       values, static_cast<size_t>(a.width), 0, std::sqrt(std::max(most, 1)));
  return canvas;
}

Exit compare(const Options& options) {
  const Frame a = read_frame(options.first, options.reading), b = read_frame(options.second, options.reading);
  if (a.width != b.width || a.height != b.height) {
    const auto size = [](const Frame& frame) {
      return std::to_string(frame.width) + "x" + std::to_string(frame.height);
    };
    report(Failure(Exit::kRefused, a.name + " is " + size(a) + ", " + b.name + " is " + size(b)));
    return Exit::kRefused;
  }
  const Difference difference(a, b);
  const bool equal = difference.count == 0;
  const auto cell = [&](size_t value) { return equal ? Cell() : Cell(static_cast<int64_t>(value)); };
  const auto width = static_cast<size_t>(a.width);
  Table table({{"first"},
               {"second"},
               {"count"},
               {"x"},
               {"y"},
               {"first_value"},
               {"second_value"},
               {"maximum"},
               {"maximum_x"},
               {"maximum_y"}});
  const size_t first = difference.first, largest = difference.largest;
  table.add({a.name, b.name, difference.count, cell(first % width), cell(first / width), cell(a.pixels[first]),
             cell(b.pixels[first]), static_cast<int64_t>(difference.levels[largest]), cell(largest % width),
             cell(largest / width)});
  table.print(std::cout, options.format);
  if (!options.picture.empty()) draw(a, b, difference).save(options.picture);
  return equal ? Exit::kDone : Exit::kRefused;
}

// Scripts ask whether frames are the same, as of diff and cmp: all trouble has one code.
Exit run(const Options& options) {
  const Exit exit = attempt([&] { return compare(options); });
  return exit > Exit::kRefused ? Exit::kUsage : exit;
}

}  // namespace

void add_diff(Commands& commands) {
  commands.add<Options>(
      {.name = "diff",
       .summary = "Compares two frames pixel by pixel",
       .examples = {"quofp diff before.png after.png", "quofp diff before.png after.png -o difference.png",
                    "quofp diff 'dump.raw#3' 'dump.raw#4' --size 160x160"},
       .details =
           "Exit code 0 when all pixels are equal, 1 when not, also when the sizes differ, 2 when a frame cannot be\n"
           "read.\n"
           "Columns: count, pixels that differ; x, y, first_value and second_value, the first of them and its gray\n"
           "levels; maximum, the largest difference, and maximum_x and maximum_y, where it first is."},
      define, run);
}

}  // namespace quofp
