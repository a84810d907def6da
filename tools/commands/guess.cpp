// quofp guess: what size the frames of a raw file may have.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>

#include "canvas.h"
#include "commands.h"
#include "formats/pgm.h"
#include "formats/png.h"
#include "inputs.h"
#include "quoFPAlg.h"
#include "size_guess.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  std::string file;
  std::string output;
  int32_t most = 6;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  command.add_option("FILE", options.file, "a raw file, - for standard input")->required()->type_name("FILE");
  command
      .add_option("-o,--output", options.output,
                  "what each size would show: one sheet (.png), or a folder for one picture each")
      ->type_name("PATH");
  add_number_option(command, "--most", options.most, 1, 100, "sizes to list");
  add_format_option(command, options.format);
}

RawLayout layout_of(const SizeGuess& guess) {
  RawLayout layout;
  layout.size = {guess.width, guess.height};
  layout.offset = guess.rest;
  layout.bits = guess.bits;
  layout.big_endian = guess.big_endian;
  if (guess.frames > 1) layout.count = 0;
  return layout;
}

// The options with which every command reads the file like this.
std::string options_of(const RawLayout& layout) {
  std::string text = "--size " + std::to_string(layout.size.width) + "x" + std::to_string(layout.size.height);
  if (layout.offset > 0) text += " --offset " + std::to_string(layout.offset);
  if (layout.bits > 8) text += " --bits " + std::to_string(layout.bits) + (layout.big_endian ? " --endian big" : "");
  return layout.count ? text + " --count 0" : text;
}

constexpr int32_t kThumbnail = 360;  // longer side at most; larger frames are halved
constexpr int kEdge = 20;            // around a sheet and between thumbnails, in picture pixels
constexpr int kHeading = 38;
constexpr int kMinWidth = 250;
constexpr int kMaxSheet = 1440;

Frame thumbnail_of(const std::string& name, std::span<const uint8_t> bytes, const RawLayout& layout) {
  Encoded encoded{name, {}, true};
  const auto first = bytes.begin() + layout.offset;
  encoded.bytes.assign(first, first + layout.frame_bytes());
  Reading reading;
  reading.raw = layout;
  Frame frame = decode(encoded, reading);
  while (std::max(frame.width, frame.height) > kThumbnail && std::min(frame.width, frame.height) > 1) {
    Frame half(name, frame.width / 2, frame.height / 2);
    ZoomImg(frame.data(), half.data(), frame.width, frame.height, 1);
    frame = std::move(half);
  }
  return frame;
}

struct Thumbnail {
  Frame frame;
  std::string title;
  std::string options;
};

Canvas draw_sheet(const std::vector<Thumbnail>& thumbnails) {
  struct Place {
    int x, y;
  };
  std::vector<Place> places;
  int x = kEdge, y = kEdge, row = 0, right = 0;
  for (const Thumbnail& thumbnail : thumbnails) {
    const int width = std::max(thumbnail.frame.width, kMinWidth);
    if (x > kEdge && x + width + kEdge > kMaxSheet) {
      x = kEdge;
      y += row + kEdge;
      row = 0;
    }
    places.push_back({x, y});
    x += width + kEdge;
    right = std::max(right, x);
    row = std::max(row, kHeading + thumbnail.frame.height);
  }
  Canvas sheet(right, y + row + kEdge, {0.96, 0.96, 0.97});
  for (size_t i = 0; i < thumbnails.size(); i++) {
    sheet.draw_text(places[i].x, places[i].y + 12, thumbnails[i].title, {.size = 13, .bold = true});
    sheet.draw_text(places[i].x, places[i].y + 29, thumbnails[i].options, {.size = 11});
    sheet.draw_frame(thumbnails[i].frame, places[i].x, places[i].y + kHeading, 1);
  }
  return sheet;
}

std::string picture_name(size_t place, const SizeGuess& guess) {
  return std::to_string(place) + "-" + std::to_string(guess.width) + "x" + std::to_string(guess.height) + "-" +
         std::to_string(guess.bits) + "bit.png";
}

Exit run(const Options& options) {
  const std::vector<uint8_t> bytes = read_file(options.file);
  if (is_png(bytes) || is_pgm(bytes)) throw file_failure(options.file, "no raw file: quofp info tells its size");
  const std::vector<SizeGuess> guesses = guess_sizes(bytes, static_cast<size_t>(options.most));
  if (bytes.empty()) throw file_failure(options.file, "the file is empty");
  if (guesses.empty()) throw file_failure(options.file, "no width makes neighbouring rows alike");
  const bool sheet = std::filesystem::path(options.output).extension() == ".png";
  if (!options.output.empty() && !sheet) make_folder(options.output);
  Table table({{"width"}, {"height"}, {"frames"}, {"bits"}, {"score"}, {"row_correlation"}, {"rest"}, {"options"}});
  std::vector<Thumbnail> thumbnails;
  for (size_t i = 0; i < guesses.size(); i++) {
    const SizeGuess& guess = guesses[i];
    const RawLayout layout = layout_of(guess);
    table.add({guess.width, guess.height, guess.frames, guess.bits, guess.score, guess.correlation, guess.rest,
               options_of(layout)});
    if (options.output.empty()) continue;
    char title[64];
    std::snprintf(title, sizeof title, "%zu: %d x %d, score %.2f", i + 1, int{guess.width}, int{guess.height},
                  guess.score);
    thumbnails.push_back({thumbnail_of(options.file, bytes, layout), title, options_of(layout)});
    if (sheet) continue;
    write_frame((std::filesystem::path(options.output) / picture_name(i + 1, guess)).string(), thumbnails.back().frame);
  }
  if (sheet) draw_sheet(thumbnails).save(options.output);
  table.print(std::cout, options.format);
  return Exit::kDone;
}

}  // namespace

void add_guess(Commands& commands) {
  commands.add<Options>(
      {.name = "guess",
       .summary = "Guesses the frame size of a raw file",
       .examples = {"quofp guess dump.raw", "quofp guess dump.raw -o guesses.png      # look which one is a finger"},
       .details =
           "A width is plausible when it makes neighbouring rows alike, more than the widths around it do; in a dump "
           "of\n"
           "several frames the height is that after which the means of the rows repeat. The best comes first.\n"
           "Columns: frames, whole ones in the file; bits, of a pixel; score, 0 to 1, how much the width stands out;\n"
           "row_correlation, of neighbouring rows; rest, bytes that belong to no frame, taken for a header; options,\n"
           "those with which the other commands read the file so."},
      define, run);
}

}  // namespace quofp
