// quofp report: frames with their figures and stages as one page for a browser.
#include <algorithm>
#include <thread>

#include "cleaning.h"
#include "commands.h"
#include "inputs.h"
#include "ordered_workers.h"
#include "progress.h"
#include "quoFPAlg.h"
#include "report/page.h"

namespace quofp {
namespace {

struct Options {
  Inputs inputs;
  std::string output;
  std::string title = "Frame report";
  int32_t details = 300;
  Cleaning cleaning;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  command.add_option("-o,--output", options.output, "the report, HTML")->required()->type_name("FILE");
  command.add_option("--title", options.title, "heading of the report [Frame report]")->type_name("TEXT");
  add_number_option(command, "--details", options.details, 0, 100000,
                    "frames that can be opened with all stages, those of the lowest quality first");
  add_coverage_options(command, options.cleaning);
}

// A row of the report, and the frame behind it if it could be read.
struct Entry {
  std::optional<Frame> frame;
  FrameRow row;
};

// Frames that cannot be read get a row, too.
Exit read_frames(const Inputs& inputs, std::vector<Entry>& entries) {
  FrameReader reader(inputs.files, inputs.reading);
  Exit exit = Exit::kDone;
  for (bool more = true; more;) {
    try {
      const std::optional<Encoded> encoded = reader.next();
      more = encoded.has_value();
      if (!more) break;
      entries.push_back({decode(*encoded, inputs.reading), {}});
      if (encoded->first) announce(*entries.back().frame);
    } catch (const Failure& failure) {
      report(failure);
      exit = worse(exit, failure.exit());
      entries.push_back({std::nullopt, {unreadable_row(failure), {}}});
    }
  }
  return exit;
}

size_t thread_count() { return std::max(1U, std::thread::hardware_concurrency()); }

// Measures the frames that could be read, several at a time, and tells what is wrong in the order of the frames.
Exit measure_frames(const Cleaning& cleaning, std::vector<Entry>& entries) {
  Exit exit = Exit::kDone;
  Progress progress("measuring", entries.size());
  auto entry = entries.begin();
  OrderedWorkers<const Frame*, FrameRow> workers(
      thread_count(), entries.size() + 1, [&](const Frame* frame) { return frame_row(*frame, cleaning); },
      [&](const FrameRow& row) {
        while (!entry->frame) entry++;
        for (const Failure& problem : row.problems) {
          progress.clear();
          report(problem);
          exit = worse(exit, problem.exit());
        }
        (entry++)->row = row;
        progress.step();
      });
  for (const Entry& one : entries) {
    if (one.frame) workers.give(&*one.frame);
  }
  workers.finish();
  return exit;
}

// Refused frames and those of low quality are what is looked at most.
std::vector<size_t> frames_to_detail(const std::vector<Entry>& entries, size_t count) {
  std::vector<size_t> order;
  for (size_t i = 0; i < entries.size(); i++) {
    if (entries[i].frame) order.push_back(i);
  }
  const auto rank = [&](size_t i) {
    const FrameRow& row = entries[i].row;
    return row.problems.empty() ? row.json.value("quality", -1) : -1;
  };
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return rank(a) < rank(b); });
  order.resize(std::min(order.size(), count));
  return order;
}

std::vector<std::string> make_details(const Options& options, const std::vector<Entry>& entries) {
  const std::vector<size_t> chosen = frames_to_detail(entries, static_cast<size_t>(options.details));
  std::vector<std::string> details(entries.size());
  Progress progress("drawing", chosen.size());
  auto next = chosen.begin();
  OrderedWorkers<size_t, std::string> workers(
      thread_count(), chosen.size() + 1,
      [&](size_t i) { return embedded_json(frame_details(*entries[i].frame, options.cleaning)); },
      [&](const std::string& json) {
        details[*next++] = json;
        progress.step();
      });
  for (const size_t i : chosen) workers.give(i);
  workers.finish();
  return details;
}

Json settings_of(const Cleaning& cleaning) {
  return {{"background", cleaning.background},
          {"min_coverage", cleaning.min_coverage},
          {"borders", border_names(cleaning.borders)}};
}

Exit run(const Options& options) {
  std::vector<Entry> entries;
  Exit exit = read_frames(options.inputs, entries);
  exit = worse(exit, measure_frames(options.cleaning, entries));
  const std::vector<std::string> details = make_details(options, entries);
  Json frames = Json::array();
  for (Entry& entry : entries) frames.push_back(std::move(entry.row.json));
  const std::string page = report_page({{"title", options.title},
                                        {"made_by", "quofp " + std::to_string(QUO_VERSION)},
                                        {"made_with", "libquoFPAlg " + std::to_string(FP_GetVersion())},
                                        {"settings", settings_of(options.cleaning)},
                                        {"frames", std::move(frames)}},
                                       details);
  write_file(options.output, {reinterpret_cast<const uint8_t*>(page.data()), page.size()});
  return exit;
}

}  // namespace

void add_report(Commands& commands) {
  commands.add<Options>(
      {.name = "report",
       .summary = "Frames with their figures and stages as one page for a browser",
       .examples = {"quofp report samples/*.png -o report.html",
                    "quofp report lot/*.png -o lot.html --title \"Lot 12\" --min-coverage 60 --borders top",
                    "quofp report lot/*.png -o lot.html --details 0      # figures alone, a small file"},
       .details =
           "The page holds everything it shows and needs no network: distributions, a table that sorts and filters,\n"
           "and for each frame what every step of the library does to it. It takes about 75 KB for each frame of\n"
           "160x160 with its stages, 3 KB without.\n"
           "A frame that cannot be read, or that the library refuses, has its reason in the table and in the exit "
           "code."},
      define, run);
}

}  // namespace quofp
