// quofp best: the frame that the library prefers by its histogram, and why.
#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>

#include "commands.h"
#include "inputs.h"
#include "quoFPAlg.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  add_format_option(command, options.format);
}

// The choice of the library among frames of one size; null pointers stand for missing frames.
std::optional<size_t> choose(const std::vector<const uint8_t*>& frames, int32_t width, int32_t height) {
  uint8_t chosen = 0;
  const uint32_t result = FP_ChooseBestHist(frames.data(), static_cast<uint8_t>(frames.size()), width, height, &chosen);
  return result == QUO_OK ? std::optional<size_t>(chosen) : std::nullopt;
}

// What the library looks at, for display. Its bins have 16 bits.
struct Figures {
  uint32_t pixels = 0;        // of gray 0 to 199
  uint32_t usable = 0;        // of gray 15 to 199
  double dark_share = 0;      // percent below 15
  double low_share = 0;       // percent from 15 to 127
  double mean = 0;            // of the usable pixels
  double mean_deviation = 0;  // mean absolute deviation from it
};

Figures figures_of(const Frame& frame) {
  std::array<uint32_t, 256> bins;
  CalcHistogram(frame.data(), frame.width * frame.height, bins.data(), 256);
  Figures figures;
  uint32_t low = 0;
  for (uint32_t gray = 0; gray < 200; gray++) {
    bins[gray] &= 0xFFFF;
    figures.pixels += bins[gray];
    if (gray < 15) continue;
    figures.usable += bins[gray];
    figures.mean += static_cast<double>(gray * bins[gray]);
    if (gray < 128) low += bins[gray];
  }
  if (figures.usable == 0) return figures;
  figures.dark_share = 100.0 * (figures.pixels - figures.usable) / figures.pixels;
  figures.low_share = 100.0 * low / figures.pixels;
  figures.mean /= figures.usable;
  for (uint32_t gray = 15; gray < 200; gray++) figures.mean_deviation += bins[gray] * std::fabs(gray - figures.mean);
  figures.mean_deviation /= figures.usable;
  return figures;
}

// The library tells no classes, but its choices do: beside nothing only a contrasted frame is chosen, alone also a dark
// one, and beside a dark one the dark one if the frame is flat bright, the frame if it is flat mid.
std::string class_of(const Frame& frame, const Figures& figures) {
  if (figures.usable == 0 || figures.pixels <= 1000) return "unclassified";
  Frame dark(frame.name, frame.width, frame.height, 255);
  std::fill_n(dark.pixels.begin(), std::min<size_t>(dark.pixels.size(), 2000), uint8_t{0});
  dark.pixels[0] = 15;  // something usable, without which no frame has a class
  const auto choice = [&frame](const std::vector<const uint8_t*>& frames) {
    return choose(frames, frame.width, frame.height);
  };
  if (choice({frame.data(), nullptr}) == 0) return "contrasted";
  if (choice({frame.data()}) == 0) return "dark";
  const std::optional<size_t> beside_dark = choice({dark.data(), frame.data()});
  if (beside_dark == 0) return "flat bright";
  if (beside_dark == 1) return "flat mid";
  return figures.low_share > 0 ? "flat" : "contrasted";  // without low pixels it is never chosen, and never flat
}

// Frames of the size of the first one that could be read.
Exit read_frames(const Inputs& inputs, std::vector<Frame>& frames) {
  return for_each_frame(inputs, [&frames](Frame& frame) {
    if (!frames.empty() && (frame.width != frames[0].width || frame.height != frames[0].height)) {
      throw file_failure(frame.name, "is not of the size of " + frames[0].name);
    }
    frames.push_back(std::move(frame));
    return Exit::kDone;
  });
}

Exit run(const Options& options) {
  const FrameReader reader(options.inputs.files, options.inputs.reading);
  if (reader.total().value_or(0) > 255) throw usage_failure("the library chooses among 255 frames at most");
  std::vector<Frame> frames;
  const Exit exit = read_frames(options.inputs, frames);
  if (frames.empty()) return exit;
  std::vector<const uint8_t*> pointers;
  for (const Frame& frame : frames) pointers.push_back(frame.data());
  const std::optional<size_t> chosen = choose(pointers, frames[0].width, frames[0].height);

  Table table({{"file"}, {"class"}, {"pixels"}, {"dark"}, {"low"}, {"mean"}, {"deviation"}, {"chosen"}});
  for (size_t i = 0; i < frames.size(); i++) {
    const Figures figures = figures_of(frames[i]);
    table.add({frames[i].name, class_of(frames[i], figures), figures.pixels, figures.dark_share, figures.low_share,
               figures.mean, figures.mean_deviation, chosen == i});
  }
  table.print(std::cout, options.format);
  if (chosen) return exit;
  return worse(exit, attempt([&]() -> Exit {
                 throw refusal(frames[0].name + (frames.size() > 1 ? " and others" : ""), "FP_ChooseBestHist",
                               QUO_NO_CANDIDATE, "no frame qualifies");
               }));
}

}  // namespace

void add_best(Commands& commands) {
  commands.add<Options>(
      {.name = "best",
       .summary = "The frame with the best histogram of several",
       .examples = {"quofp best frames/*.png", "quofp best a.png b.png c.png --format json"},
       .details =
           "Columns: class, what the frame counts as; pixels, those of gray 0 to 199, all others being left out; dark\n"
           "and low, percent of them at 0 to 14 and at 15 to 127; mean and deviation, mean gray of those from 15 on\n"
           "and their mean absolute deviation from it; chosen, whether it is the one.\n"
           "Contrasted frames come first, the one with the largest low share. Failing these, dark, flat bright and\n"
           "flat mid frames are weighed against one another. Exit code 1 when no frame qualifies."},
      define, run);
}

}  // namespace quofp
