// quofp match: how alike frames are by their Sp templates, two of them or all of a folder.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>

#include "canvas.h"
#include "commands.h"
#include "inputs.h"
#include "progress.h"
#include "quoFPAlg.h"
#include "sp_template.h"
#include "table.h"

namespace quofp {
namespace {

namespace fs = std::filesystem;

struct Options {
  std::vector<std::string> files;
  std::string folder;
  std::string picture;
  bool summary = false;
  Reading reading;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  command.add_option("FILES", options.files, "two templates, or frames to make them of")->type_name("A B");
  command.add_option("--matrix", options.folder, "matches all templates and frames of a folder with one another")
      ->type_name("FOLDER");
  command.add_option("-o,--output", options.picture, "with --matrix: draws the scores as a heat map into this PNG")
      ->type_name("FILE");
  command.add_flag("--summary", options.summary,
                   "with --matrix: the range of scores of the same and of other fingers instead of all scores");
  add_reading_options(command, options.reading);
  add_format_option(command, options.format);
}

/** Score from 0 to 100; nothing when the templates do not fit together. */
std::optional<int64_t> score_of(const SpTemplate& first, const SpTemplate& second) {
  uint32_t score = 0;
  if (FP_MatchSpTemplates(first.bytes.data(), second.bytes.data(), &score) != QUO_OK) return std::nullopt;
  return score;
}

std::string stem_of(const SpTemplate& item) { return fs::path(item.name).stem().string(); }

Exit match_two(const Options& options) {
  const SpTemplate first = read_template(options.files[0], options.reading),
                   second = read_template(options.files[1], options.reading);
  const std::optional<int64_t> score = score_of(first, second);
  if (!score) {
    throw refusal(first.name + " and " + second.name, "FP_MatchSpTemplates", QUO_TEMPLATE_MISFIT,
                  "the templates are of frames of different sizes");
  }
  Table table({{"first"}, {"second"}, {"score"}});
  table.add({first.name, second.name, *score});
  table.print(std::cout, options.format);
  return Exit::kDone;
}

/** Templates and the score of each with each. */
struct Matrix {
  std::vector<SpTemplate> items;
  std::vector<std::optional<int64_t>> scores;  // row by row

  size_t size() const { return items.size(); }
  std::optional<int64_t>& at(size_t row, size_t column) { return scores[row * size() + column]; }
  const std::optional<int64_t>& at(size_t row, size_t column) const { return scores[row * size() + column]; }

  /** Calls `work(first, second)` for every pair of different items, each pair once. */
  template <typename Work>
  void for_each_pair(Work work) const {
    for (size_t i = 0; i < size(); i++) {
      for (size_t j = i + 1; j < size(); j++) work(i, j);
    }
  }
};

Exit read_all(const Options& options, Matrix& matrix) {
  const std::vector<std::string> files = list_files(options.folder);
  Progress progress("reading", files.size());
  return for_each_item(files, [&](const std::string& file) {
    progress.step();
    matrix.items.push_back(read_template(file, options.reading));
    return Exit::kDone;
  });
}

// The score does not depend on which of the two comes first.
void match_all(Matrix& matrix) {
  const size_t n = matrix.size();
  matrix.scores.resize(n * n);
  Progress progress("matching", n);
  for (size_t i = 0; i < n; i++) {
    for (size_t j = i; j < n; j++) matrix.at(i, j) = matrix.at(j, i) = score_of(matrix.items[i], matrix.items[j]);
    progress.step();
  }
}

Table pair_table(const Matrix& matrix) {
  Table table({{"first"}, {"second"}, {"score"}});
  matrix.for_each_pair([&](size_t i, size_t j) {
    table.add({matrix.items[i].name, matrix.items[j].name, optional_cell(matrix.at(i, j))});
  });
  return table;
}

// "finger-7" of "finger-7-2.png".
std::string finger_of(const SpTemplate& item) {
  const std::string stem = stem_of(item);
  return stem.substr(0, stem.rfind('-'));
}

Table summary_table(const Matrix& matrix) {
  std::map<bool, std::vector<int64_t>> scores = {{true, {}}, {false, {}}};  // of the same finger, of others
  matrix.for_each_pair([&](size_t i, size_t j) {
    if (matrix.at(i, j)) scores[finger_of(matrix.items[i]) == finger_of(matrix.items[j])].push_back(*matrix.at(i, j));
  });
  Table table({{"finger"}, {"pairs"}, {"lowest"}, {"mean", 1}, {"highest"}});
  for (const bool same : {true, false}) {
    const std::vector<int64_t>& all = scores[same];
    std::vector<Cell> row = {std::string(same ? "same" : "other"), static_cast<int64_t>(all.size()), {}, {}, {}};
    if (!all.empty()) {
      double sum = 0;
      for (const int64_t score : all) sum += static_cast<double>(score);
      row[2] = *std::min_element(all.begin(), all.end());
      row[3] = sum / static_cast<double>(all.size());
      row[4] = *std::max_element(all.begin(), all.end());
    }
    table.add(row);
  }
  return table;
}

// All in picture pixels.
constexpr int kEdge = 24;      // around the picture
constexpr int kTitle = 40;     // height of the title
constexpr int kScale = 100;    // width of the colour scale and its numbers
constexpr int kMapSide = 880;  // of the map, about
constexpr int kLargestCell = 40;
constexpr int kNamedCell = 10;      // cells from here on have room for the name of their row
constexpr int kNumberedCell = 20;   // and from here on for their score
constexpr double kBrightCell = 60;  // scores from here on have a colour that dark text can be read on

void draw_cell(Canvas& canvas, const Area& cell, const std::optional<int64_t>& score) {
  if (!score) canvas.fill_rectangle(cell, colours::kRule);
  if (cell.width < kNumberedCell) return;
  const bool bright = !score || static_cast<double>(*score) >= kBrightCell;
  canvas.draw_text(cell.x + cell.width / 2, cell.y + cell.height / 2 + 4, score ? std::to_string(*score) : "-",
                   {.size = 10, .colour = bright ? colours::kInk : colours::kPaper, .align = Align::kCentre});
}

// Rules between fingers, where the names tell them apart and each has several templates.
void draw_groups(Canvas& canvas, const Matrix& matrix, const Area& map, double cell) {
  size_t groups = 1;
  for (size_t i = 1; i < matrix.size(); i++) groups += finger_of(matrix.items[i]) != finger_of(matrix.items[i - 1]);
  if (groups == matrix.size()) return;
  for (size_t i = 1; i < matrix.size(); i++) {
    if (finger_of(matrix.items[i]) == finger_of(matrix.items[i - 1])) continue;
    const double at = cell * static_cast<double>(i);
    canvas.draw_line(map.x + at, map.y, map.x + at, map.y + map.height, colours::kPaper.with_opacity(0.6));
    canvas.draw_line(map.x, map.y + at, map.x + map.width, map.y + at, colours::kPaper.with_opacity(0.6));
  }
}

void draw_scale(Canvas& canvas, const Area& map) {
  constexpr size_t kSteps = 101;
  std::vector<double> steps;
  for (size_t i = 0; i < kSteps; i++) steps.push_back(static_cast<double>(kSteps - 1 - i));
  const double height = std::min(map.height, 300.0);
  const Area scale{map.x + map.width + kEdge, map.y, 18, height};
  canvas.draw_heat_map(scale, steps, 1, 0, 100);
  for (const int score : {0, 25, 50, 75, 100}) {
    const double y = scale.y + height * (1 - score / 100.0);
    canvas.draw_text(scale.x + scale.width + 8, std::clamp(y + 4, scale.y + 9, scale.y + height), std::to_string(score),
                     {.size = 11});
  }
}

Canvas draw(const Options& options, const Matrix& matrix) {
  const auto n = static_cast<int>(matrix.size());
  const int cell = std::clamp(kMapSide / n, 1, kLargestCell), side = cell * n;
  Canvas measure(1, 1);
  double names = 0;
  if (cell >= kNamedCell) {
    for (const SpTemplate& item : matrix.items)
      names = std::max(names, measure.text_width(stem_of(item), {.size = 11}));
    names += 10;
  }
  const Area map{kEdge + names, kEdge + kTitle, static_cast<double>(side), static_cast<double>(side)};
  Canvas canvas(static_cast<int>(map.x) + std::max(side, 300) + 2 * kEdge + kScale,
                static_cast<int>(map.y) + std::max(side, 150) + kEdge);
  canvas.draw_text(kEdge, kEdge + 14, "Scores of " + std::to_string(n) + " templates in " + options.folder,
                   {.size = 16, .bold = true});
  std::vector<double> values;
  for (const auto& score : matrix.scores) values.push_back(static_cast<double>(score.value_or(0)));
  canvas.draw_heat_map(map, values, matrix.size(), 0, 100);
  for (size_t i = 0; i < matrix.size(); i++) {
    const double y = map.y + cell * static_cast<double>(i);
    for (size_t j = 0; j < matrix.size(); j++) {
      const double x = map.x + cell * static_cast<double>(j);
      draw_cell(canvas, {x, y, static_cast<double>(cell), static_cast<double>(cell)}, matrix.at(i, j));
    }
    if (cell >= kNamedCell) {
      canvas.draw_text(map.x - 8, y + cell / 2.0 + 4, stem_of(matrix.items[i]), {.size = 11, .align = Align::kRight});
    }
  }
  draw_groups(canvas, matrix, map, cell);
  draw_scale(canvas, map);
  return canvas;
}

// Tells how many pairs have no score.
Exit report_misfits(const Options& options, const Matrix& matrix) {
  size_t pairs = 0, misfits = 0;
  matrix.for_each_pair([&](size_t i, size_t j) {
    pairs++;
    misfits += !matrix.at(i, j);
  });
  if (misfits == 0) return Exit::kDone;
  report(Failure(Exit::kRefused, options.folder + ": " + std::to_string(misfits) + " of " + std::to_string(pairs) +
                                     " pairs are of frames of different sizes and have no score"));
  return Exit::kRefused;
}

Exit match_folder(const Options& options) {
  Matrix matrix;
  const Exit read = read_all(options, matrix);
  if (matrix.items.size() < 2) throw file_failure(options.folder, "holds fewer than two templates or frames");
  match_all(matrix);
  if (!options.picture.empty()) draw(options, matrix).save(options.picture);
  (options.summary ? summary_table(matrix) : pair_table(matrix)).print(std::cout, options.format);
  return worse(read, report_misfits(options, matrix));
}

Exit run(const Options& options) {
  const bool folder = !options.folder.empty();
  if (options.files.size() != (folder ? 0 : 2)) throw usage_failure("match takes two files, or --matrix and a folder");
  if (!folder && (options.summary || !options.picture.empty())) {
    throw usage_failure("--summary and --output go with --matrix only");
  }
  return folder ? match_folder(options) : match_two(options);
}

}  // namespace

void add_match(Commands& commands) {
  commands.add<Options>(
      {.name = "match",
       .summary = "Scores how alike frames are by their Sp templates",
       .examples = {"quofp match a.sp b.sp", "quofp match enrolled.sp frame.png",
                    "quofp match --matrix lot/ -o scores.png --format csv > scores.csv",
                    "quofp match --matrix lot/ --summary       # how well same and other fingers come apart"},
       .details = "Scores go from 0 to 100. Templates are compared without any shift, so both frames must show the\n"
                  "finger at the same place. In a folder, files whose names are equal up to the last '-' are taken\n"
                  "for the same finger: finger-7-1.png and finger-7-2.png."},
      define, run);
}

}  // namespace quofp
