// quofp show: what an Sp template holds.
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "canvas.h"
#include "commands.h"
#include "inputs.h"
#include "sp_template.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  std::string file;
  Reading reading;
  std::string picture;
  bool runs = false;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  command.add_option("TEMPLATE", options.file, "a template, or a frame to make it of")->required()->type_name("FILE");
  add_reading_options(command, options.reading);
  command.add_option("-o,--output", options.picture, "draws the profiles into this PNG")->type_name("FILE");
  command.add_flag("--runs", options.runs, "lists every run instead of every section");
  add_format_option(command, options.format);
}

int64_t count_of(const Profile& profile, uint8_t value) {
  return std::count(profile.values.begin(), profile.values.end(), value);
}

Table section_table(const TemplateLayout& layout) {
  Table table({{"section"}, {"line"}, {"length"}, {"runs"}, {"dark"}, {"bright"}, {"saturated"}, {"bytes"}});
  const std::optional<Size> frame = layout.frame_size();
  int64_t number = 0;
  for (const Profile& profile : layout.profiles) {
    const auto runs = static_cast<int64_t>(profile.runs.size());
    const Cell line = frame ? Cell(profile_line(static_cast<size_t>(number), *frame).name()) : Cell();
    table.add({++number, line, static_cast<int64_t>(profile.length), runs, count_of(profile, 0), count_of(profile, 255),
               count_of(profile, 254), 2 + 2 * runs});
  }
  return table;
}

Table run_table(const TemplateLayout& layout) {
  Table table({{"section"}, {"position"}, {"value"}, {"count"}});
  int64_t number = 0;
  for (const Profile& profile : layout.profiles) {
    int64_t position = 0;
    number++;
    for (const Run& run : profile.runs) {
      table.add({number, position, int64_t{run.value}, int64_t{run.count}});
      position += run.count;
    }
  }
  return table;
}

std::string title_of(const SpTemplate& shown, const TemplateLayout& layout) {
  std::string text = std::filesystem::path(shown.name).filename().string() + ": version " +
                     std::to_string(layout.version) + ", payload " + std::to_string(layout.payload) + ", " +
                     std::to_string(shown.bytes.size()) + " bytes";
  if (const auto size = layout.frame_size()) {
    text += ", frame " + std::to_string(size->width) + "x" + std::to_string(size->height);
  }
  return text;
}

// All in picture pixels.
constexpr int kEdge = 24;           // around the picture
constexpr int kTitle = 40;          // height of title and legend
constexpr int kStrip = 34;          // height of a profile
constexpr int kStripPitch = 84;     // from one profile to the next: name, profile, ticks
constexpr int kMapSide = 150;       // of the frame's outline
constexpr int kProfileWidth = 720;  // of the longest profile at most
constexpr int kTickStep = 20;       // profile positions

constexpr Colour kDark = colours::kInk;
constexpr Colour kBright{0.93, 0.94, 0.95};
constexpr Colour kSaturated = colours::kOrange;

Colour colour_of(uint8_t value) { return value == 0 ? kDark : value == 254 ? kSaturated : kBright; }

void draw_profile(Canvas& canvas, const Profile& profile, const std::string& name, double top, double zoom) {
  const double bottom = top + kStrip, width = zoom * static_cast<double>(profile.values.size());
  canvas.draw_text(kEdge, top - 7, name, {.size = 13, .bold = true});
  const auto dark = static_cast<double>(count_of(profile, 0)) / static_cast<double>(profile.values.size());
  const std::string figures = std::to_string(profile.length) + " positions, " + std::to_string(profile.runs.size()) +
                              " runs, " + std::to_string(static_cast<int>(100 * dark + 0.5)) + " % dark";
  canvas.draw_text(kEdge + width, top - 7, figures, {.size = 12, .colour = colours::kFaint, .align = Align::kRight});
  double x = kEdge;
  for (const Run& run : profile.runs) {
    canvas.fill_rectangle({x, top, zoom * run.count, kStrip}, colour_of(run.value));
    x += zoom * run.count;
  }
  canvas.draw_rectangle({kEdge, top, width, kStrip}, colours::kFaint);
  for (size_t i = 0; i < profile.values.size(); i += kTickStep) {
    const double tick = kEdge + zoom * (static_cast<double>(i) + 0.5);
    canvas.draw_line(tick, bottom, tick, bottom + 4, colours::kFaint);
    canvas.draw_text(tick, bottom + 15, std::to_string(i + kProfileMargin),
                     {.size = 10, .colour = colours::kFaint, .align = Align::kCentre});
  }
}

// The outline of the frame with the lines that the profiles are taken from.
void draw_map(Canvas& canvas, Size frame, double x, double y) {
  const double zoom = static_cast<double>(kMapSide) / std::max(frame.width, frame.height);
  canvas.draw_rectangle({x, y, zoom * frame.width, zoom * frame.height}, colours::kFaint);
  for (size_t section = 0; section < 6; section++) {
    const ProfileLine line = profile_line(section, frame);
    const double at = zoom * (line.position + 0.5), from = zoom * kProfileMargin;
    if (line.is_row) {
      canvas.draw_line(x + from, y + at, x + zoom * (frame.width - kProfileMargin), y + at, colours::kBlue, 1.5);
    } else {
      canvas.draw_line(x + at, y + from, x + at, y + zoom * (frame.height - kProfileMargin), colours::kRed, 1.5);
    }
  }
  canvas.draw_text(x, y + zoom * frame.height + 16, "3 rows", {.size = 12, .colour = colours::kBlue});
  canvas.draw_text(x + zoom * frame.width, y + zoom * frame.height + 16, "3 columns",
                   {.size = 12, .colour = colours::kRed, .align = Align::kRight});
}

void draw_legend(Canvas& canvas, double x, double y) {
  const struct {
    Colour colour;
    const char* meaning;
  } entries[] = {
      {kDark, "dark: not brighter than its surroundings (0)"}, {kBright, "brighter (255)"}, {kSaturated, "254"}};
  for (const auto& [colour, meaning] : entries) {
    canvas.fill_rectangle({x, y - 10, 12, 12}, colour);
    canvas.draw_rectangle({x, y - 10, 12, 12}, colours::kFaint);
    canvas.draw_text(x + 18, y, meaning, {.size = 12});
    x += 18 + canvas.text_width(meaning, {.size = 12}) + 20;
  }
}

Canvas draw(const SpTemplate& shown, const TemplateLayout& layout) {
  size_t longest = 1;
  for (const Profile& profile : layout.profiles) longest = std::max(longest, profile.values.size());
  const double zoom = std::clamp(kProfileWidth / static_cast<int>(longest), 1, 8);
  const double strips = std::max(zoom * static_cast<double>(longest), 480.0);
  const auto rows = static_cast<int>(std::max<size_t>(layout.profiles.size(), 3));
  Canvas canvas(static_cast<int>(strips) + 3 * kEdge + kMapSide, 2 * kEdge + kTitle + rows * kStripPitch);
  canvas.draw_text(kEdge, kEdge + 12, title_of(shown, layout), {.size = 16, .bold = true});
  draw_legend(canvas, kEdge, kEdge + 38);
  const std::optional<Size> frame = layout.frame_size();
  for (size_t i = 0; i < layout.profiles.size(); i++) {
    const std::string section = "section " + std::to_string(i + 1);
    const std::string name = frame ? profile_line(i, *frame).name() : section;
    draw_profile(canvas, layout.profiles[i], name, kEdge + kTitle + 34 + static_cast<double>(i) * kStripPitch, zoom);
  }
  if (frame) draw_map(canvas, *frame, strips + 2 * kEdge, kEdge + kTitle + 34);
  return canvas;
}

Exit run(const Options& options) {
  const SpTemplate shown = read_template(options.file, options.reading);
  const TemplateLayout layout = parse_template(shown.name, shown.bytes);
  if (!options.picture.empty()) draw(shown, layout).save(options.picture);
  if (options.format == Format::kTable) std::cout << title_of(shown, layout) << "\n\n";
  (options.runs ? run_table(layout) : section_table(layout)).print(std::cout, options.format);
  return Exit::kDone;
}

}  // namespace

void add_show(Commands& commands) {
  commands.add<Options>(
      {.name = "show",
       .summary = "Shows what an Sp template holds",
       .examples = {"quofp show frame.sp", "quofp show frame.sp -o profiles.png",
                    "quofp show frame.sp --runs --format csv",
                    "quofp show frame.png                      # of the template that it would have"},
       .details = "Columns: line, where in the frame the profile lies; length, its positions; dark, bright and\n"
                  "saturated, how many of them hold 0, 255 and 254; bytes, what the section takes in the file."},
      define, run);
}

}  // namespace quofp
