// quofp sheet: frames before and after cleaning, side by side in one picture.
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "canvas.h"
#include "cleaning.h"
#include "commands.h"
#include "inputs.h"
#include "measures.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  std::string output;
  Cleaning cleaning;
  int32_t columns = 0;
  int32_t zoom = 0;
  std::string sort_by;
  bool descending = false;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  command.add_option("-o,--output", options.output, "the picture, PNG")->required()->type_name("FILE");
  add_number_option(command, "--columns", options.columns, 0, 100, "pairs side by side; 0 as many as fit");
  add_number_option(command, "--zoom", options.zoom, 0, 16,
                    "picture pixels per frame pixel; 0 by the size of the frame");
  auto* const sort = command.add_option(
      "--sort-by", options.sort_by, "orders the frames by a column of quofp batch, such as quality, the lowest first");
  sort->check(CLI::Validator(
                  [](const std::string& name) {
                    return is_figure(name) ? std::string() : "'" + name + "' is no column with numbers of quofp batch";
                  },
                  ""))
      ->type_name("NAME");
  command.add_flag("--descending", options.descending, "the highest first")->needs(sort);
  add_cleaning_options(command, options.cleaning);
  add_format_option(command, options.format);
}

// A frame before and, unless the library refused it, after.
struct Pair {
  Frame before;
  std::optional<Frame> after;
  std::string caption;
  std::optional<int64_t> figure;  // that the pairs are ordered by
  std::vector<Cell> row;
};

// In the order of the figure; frames without it come last, equal ones as they were given.
void sort_pairs(std::vector<Pair>& pairs, bool descending) {
  std::stable_sort(pairs.begin(), pairs.end(), [descending](const Pair& a, const Pair& b) {
    if (!a.figure || !b.figure) return a.figure.has_value() && !b.figure;
    return descending ? *a.figure > *b.figure : *a.figure < *b.figure;
  });
}

// All in picture pixels.
constexpr int kMargin = 24;      // around the sheet and between pairs
constexpr int kTitle = 36;       // height of the title
constexpr int kGap = 8;          // between before and after
constexpr int kHeading = 16;     // name above a pair
constexpr int kCaption = 20;     // figures below a pair
constexpr int kMinPair = 300;    // width of a pair, for its captions
constexpr int kMaxSheet = 1440;  // width of a sheet, unless the columns are given
constexpr int kFrameSide = 330;  // of an enlarged frame at most

// Where a pair lies on the sheet.
struct Place {
  int x;
  int y;
  int zoom;
};

// Pairs follow one another like words in a paragraph; a row is as high as its highest pair.
class Layout {
 public:
  Layout(const Options& options, const std::vector<Pair>& pairs) {
    int x = kMargin, y = kMargin + kTitle, row_height = 0, in_row = 0;
    for (const Pair& pair : pairs) {
      const Frame& frame = pair.before;
      const int zoom = options.zoom != 0 ? options.zoom : fitting_zoom(frame.width, frame.height, kFrameSide);
      const int width = std::max(2 * frame.width * zoom + kGap, kMinPair);
      const int height = kHeading + frame.height * zoom + kCaption;
      if (options.columns != 0 ? in_row == options.columns : in_row > 0 && x + width + kMargin > kMaxSheet) {
        x = kMargin;
        y += row_height + kMargin;
        row_height = in_row = 0;
      }
      places_.push_back({x, y, zoom});
      x += width + kMargin;
      in_row++;
      row_height = std::max(row_height, height);
      width_ = std::max(width_, x);
      height_ = std::max(height_, y + height + kMargin);
    }
  }

  int width() const { return width_; }
  int height() const { return height_; }
  const Place& operator[](size_t pair) const { return places_[pair]; }

 private:
  std::vector<Place> places_;
  int width_ = 0;
  int height_ = 0;
};

void draw_pair(Canvas& canvas, const Pair& pair, const Place& place, const std::string& figure) {
  const int top = place.y + kHeading, width = pair.before.width * place.zoom;
  const std::string name = std::filesystem::path(pair.before.name).filename().string();
  canvas.draw_text(place.x, place.y + 10, name, {.size = 13, .bold = true});
  if (pair.figure) {
    canvas.draw_text(place.x + std::max(2 * width + kGap, kMinPair), place.y + 10,
                     figure + " " + std::to_string(*pair.figure), {.size = 12, .align = Align::kRight});
  }
  canvas.draw_frame(pair.before, place.x, top, place.zoom);
  if (pair.after) canvas.draw_frame(*pair.after, place.x + width + kGap, top, place.zoom);
  canvas.draw_text(place.x, top + pair.before.height * place.zoom + 15, pair.caption,
                   {.size = 12, .colour = pair.after ? colours::kInk : colours::kRed});
}

Canvas draw_sheet(const Options& options, const std::vector<Pair>& pairs) {
  const Layout layout(options, pairs);
  Canvas canvas(layout.width(), layout.height(), {0.96, 0.96, 0.97});
  canvas.draw_text(kMargin, kMargin + 14, "Before and after preprocessing", {.size = 17, .bold = true});
  for (size_t i = 0; i < pairs.size(); i++) draw_pair(canvas, pairs[i], layout[i], options.sort_by);
  return canvas;
}

std::string caption_of(const Findings& findings) {
  std::string text =
      "coverage " + std::to_string(findings.coverage) + " %    background " + std::to_string(findings.background);
  if (findings.gain) text += "    gain " + std::to_string(*findings.gain);
  return text;
}

Exit run(const Options& options) {
  check(options.cleaning);
  std::vector<Pair> pairs;
  const Exit exit = for_each_frame(options.inputs, [&](const Frame& frame) {
    Pair pair;
    pair.before = frame;
    pair.after = frame;
    if (!options.sort_by.empty()) pair.figure = figure_of(frame, options.sort_by);
    Findings findings = measure(frame, options.cleaning);
    const Exit done = attempt([&] {
      clean(*pair.after, options.cleaning, findings);
      return Exit::kDone;
    });
    if (done != Exit::kDone) pair.after.reset();
    pair.caption = caption_of(findings) + (pair.after ? "" : "    refused");
    pair.row = {frame.name, findings.background, findings.coverage, optional_cell(findings.gain)};
    if (!options.sort_by.empty()) pair.row.push_back(optional_cell(pair.figure));
    pairs.push_back(std::move(pair));
    return done;
  });
  sort_pairs(pairs, options.descending);
  if (!pairs.empty()) draw_sheet(options, pairs).save(options.output);
  std::vector<Column> columns = {{"file"}, {"background"}, {"coverage"}, {"gain"}};
  if (!options.sort_by.empty()) columns.push_back({"sort_by_" + options.sort_by});
  Table table(columns);
  for (const Pair& pair : pairs) table.add(pair.row);
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_sheet(Commands& commands) {
  commands.add<Options>({.name = "sheet",
                         .summary = "Draws frames before and after cleaning on one contact sheet",
                         .examples = {"quofp sheet samples/*.png -o sheet.png",
                                      "quofp sheet lot/*.png -o sheet.png --columns 4 --zoom 1 --min-coverage 60",
                                      "quofp sheet lot/ -o sheet.png --sort-by quality --descending"},
                         .details = "Frames are shown with every pixel as a square of whole picture pixels."},
                        define, run);
}

}  // namespace quofp
