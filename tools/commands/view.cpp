// quofp view: every stage that a frame goes through, and all that is found on it, as pictures.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <iostream>

#include "cleaning.h"
#include "commands.h"
#include "inputs.h"
#include "pictures.h"
#include "quoFPAlg.h"
#include "table.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  std::string folder;
  Cleaning cleaning;
  int32_t zoom = 0;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  add_input(command, options.inputs);
  command.add_option("-o,--output", options.folder, "the folder for the pictures")->required()->type_name("DIR");
  add_number_option(command, "--zoom", options.zoom, 0, 16,
                    "picture pixels per frame pixel; 0 by the size of the frame");
  add_border_option(command, options.cleaning);
  add_format_option(command, options.format);
}

struct Picture {
  std::string stage;
  std::string text;  // what there is to see, in figures
  Canvas canvas;
};

std::string number(int64_t value) { return std::to_string(value); }

/** The stages in their order, each from what the ones before have left. */
class Stages {
 public:
  Stages(const Frame& frame, const Options& options)
      : raw_(frame),
        frame_(frame),
        cleaning_(options.cleaning),
        findings_(measure(frame, options.cleaning)),
        zoom_(options.zoom != 0 ? options.zoom : fitting_zoom(frame.width, frame.height)) {}

  /** Draws them all. A stage that the library refuses is reported and left out. */
  Exit draw() {
    const std::function<Picture()> stages[] = {
        [this] { return raw(); },     [this] { return area(); },    [this] { return stripes(); },
        [this] { return balance(); }, [this] { return enhance(); }, [this] { return directions(); },
        [this] { return blocks(); },  [this] { return defects(); }, [this] { return bubbles(); }};
    Exit exit = Exit::kDone;
    for (const auto& stage : stages) {
      exit = worse(exit, attempt([&] {
                     pictures_.push_back(stage());
                     return Exit::kDone;
                   }));
    }
    return exit;
  }

  std::deque<Picture>& pictures() { return pictures_; }

 private:
  Picture raw() {
    return {"raw", number(raw_.width) + " x " + number(raw_.height) + " pixels, zoom " + number(zoom_), plain(raw_)};
  }

  Picture area() {
    const std::string text =
        "coverage " + number(findings_.coverage) + " %, background " + number(findings_.background);
    return {"area", text, draw_valid_area(raw_, static_cast<uint8_t>(findings_.background), zoom_)};
  }

  Picture stripes() {
    clean(Stage::kBorders);
    clean(Stage::kStripes);
    const bool borders = cleaning_.borders != 0;
    return {"stripes", borders ? "borders replaced, column stripes removed" : "column stripes removed", plain(frame_)};
  }

  Picture balance() {
    clean(Stage::kBalance);
    return {"balanced", "gain " + number(findings_.gain.value_or(0)), plain(frame_)};
  }

  Picture enhance() {
    Frame enhanced = frame_;
    const Frame field = orientation_field(frame_, Strokes().radius);
    if (OrientEnhance(enhanced.data(), field.data(), enhanced.width, enhanced.height) == 0) {
      throw refusal(raw_.name, "OrientEnhance", 0, "memory is short");
    }
    return {"enhanced", "ridges sharpened along their directions", plain(enhanced)};
  }

  Picture directions() {
    const Strokes strokes;
    return {"directions", "one every " + number(strokes.spacing) + " x " + number(strokes.spacing) + " pixels",
            draw_strokes(raw_, orientation_field(raw_, strokes.radius), strokes, zoom_)};
  }

  Picture blocks() {
    const Blocks found = find_blocks(raw_);
    int64_t finger = 0, directed = 0;
    for (const quo_block_record& record : found.span()) {
      finger += record.direction >= 0;
      directed += record.direction > 0;
    }
    return {"blocks",
            number(found.count) + ", " + number(finger) + " with finger, " + number(directed) + " with a direction",
            draw_blocks(raw_, found, zoom_)};
  }

  Picture defects() {
    const Defects found = find_defects(raw_);
    return {"defects",
            "columns " + number(found.bad_columns) + ", rows " + number(found.bad_rows) + ", single pixels " +
                number(found.pixels - found.line_pixels),
            draw_defects(raw_, found, zoom_)};
  }

  Picture bubbles() {
    const Bubbles found = find_bubbles(raw_);
    return {"bubbles", number(found.pixels) + " pixels", draw_bubbles(raw_, found, zoom_)};
  }

  Canvas plain(const Frame& frame) const { return {frame, zoom_}; }

  void clean(Stage stage) {
    cleaning_.stage = stage;
    quofp::clean(frame_, cleaning_, findings_);
  }

  const Frame& raw_;
  Frame frame_;  // as the stages have left it
  Cleaning cleaning_;
  Findings findings_;
  int zoom_;
  std::deque<Picture> pictures_;
};

constexpr int kEdge = 20;        // around the overview and between pictures, in picture pixels
constexpr int kHeading = 40;     // name and figures above a picture
constexpr int kTitle = 36;       // of the overview
constexpr int kMinWidth = 270;   // of a picture with its text
constexpr int kMaxSheet = 2400;  // width of the overview, unless one picture is wider

Canvas draw_overview(const Frame& frame, const std::deque<Picture>& pictures) {
  const int width = std::max(pictures.front().canvas.width(), kMinWidth), height = pictures.front().canvas.height();
  const auto count = static_cast<int>(pictures.size());
  const int columns = std::clamp((kMaxSheet - kEdge) / (width + kEdge), 1, std::min(count, 3));
  const int rows = (count + columns - 1) / columns;
  Canvas sheet(kEdge + columns * (width + kEdge), kTitle + kEdge + rows * (kHeading + height + kEdge),
               {0.96, 0.96, 0.97});
  sheet.draw_text(kEdge, kEdge + 14, std::filesystem::path(frame.name).filename().string(), {.size = 17, .bold = true});
  int i = 0;
  for (const Picture& picture : pictures) {
    const int x = kEdge + i % columns * (width + kEdge);
    const int y = kTitle + kEdge + i / columns * (kHeading + height + kEdge);
    sheet.draw_text(x, y + 12, picture.stage, {.size = 14, .bold = true});
    sheet.draw_text(x, y + 30, picture.text, {.size = 12});
    sheet.draw_picture(picture.canvas, x, y + kHeading);
    i++;
  }
  return sheet;
}

Exit run(const Options& options) {
  const Frame frame = options.inputs.read_only();
  Stages stages(frame, options);
  const Exit exit = stages.draw();
  make_folder(options.folder);
  Table table({{"stage"}, {"figures"}, {"output"}});
  std::deque<Picture>& pictures = stages.pictures();
  pictures.push_front({"overview", "all of them on one sheet", draw_overview(frame, pictures)});
  int place = 0;
  for (Picture& picture : pictures) {
    const std::string name = std::to_string(place++) + "-" + picture.stage + ".png";
    const std::string path = (std::filesystem::path(options.folder) / name).string();
    picture.canvas.save(path);
    table.add({picture.stage, picture.text, path});
  }
  table.print(std::cout, options.format);
  return exit;
}

}  // namespace

void add_view(Commands& commands) {
  commands.add<Options>(
      {.name = "view",
       .summary = "Draws every stage of a frame and all that is found on it",
       .examples = {"quofp view frame.png -o stages/", "quofp view 'dump.raw#7' --size 160x160 -o stages/ --zoom 4"},
       .details =
           "Pictures, numbered in their order: overview; raw; area, blocks without finger in blue and the finger's\n"
           "centre as a ring; stripes, after border and stripe removal; balanced; enhanced, sharpened along the\n"
           "ridges; directions; blocks, those of the sensor score with their direction, a ring for none, blue for\n"
           "background; defects, lines in blue and pixels in orange; bubbles in orange.\n"
           "Columns: stage; figures, what the library counts or measures there; output, the file written."},
      define, run);
}

}  // namespace quofp
