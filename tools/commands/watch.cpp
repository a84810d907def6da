// quofp watch: frames as they arrive in a folder.
//
// The folder is looked at over and over. The kernel could tell of new files, but not on network drives, and not when a
// program that writes in pieces is done: a file counts as complete when it has not changed for a while, in any case.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <iostream>
#include <map>

#include "commands.h"
#include "inputs.h"
#include "interrupt.h"
#include "measures.h"

namespace quofp {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int64_t kPause = 100;  // milliseconds from one look to the next
constexpr int kPatience = 5;     // times the settling time that a file which cannot be read is waited for

struct Options {
  std::string folder;
  Reading reading;
  bool once = false;
  bool all = false;
  int32_t settle = 500;
  Format format = Format::kTable;
};

void define(CLI::App& command, Options& options) {
  command.add_option("DIR", options.folder, "the folder")->required()->type_name("DIR");
  auto* const once = command.add_flag("--once", options.once, "prints the frames that are there and ends");
  command.add_flag("--all", options.all, "begins with the frames that are there")->excludes(once);
  add_number_option(command, "--settle", options.settle, 0, 60000,
                    "milliseconds without a change after which a file is complete");
  add_reading_options(command, options.reading);
  add_format_option(command, options.format);
}

/** Prints a line for each frame: words, CSV under a heading, or JSON objects. */
class Lines {
 public:
  explicit Lines(Format format) : format_(format) {
    if (format_ == Format::kCsv) print(csv_heading(frame_columns()));
  }

  void add(const std::vector<Cell>& row) const {
    switch (format_) {
      case Format::kTable:
        return print(words_of(row));
      case Format::kCsv:
        return print(csv_row(frame_columns(), row));
      case Format::kJson:
        return print(json_row(frame_columns(), row));
    }
  }

 private:
  static void print(const std::string& line) {
    if (!(std::cout << line + "\n" << std::flush)) throw file_failure("standard output", "cannot be written");
  }

  static std::string words_of(const std::vector<Cell>& row) {
    const auto figure = [&row](const char* name) {
      for (size_t i = 0; i < row.size(); i++) {
        if (frame_columns()[i].name != name) continue;
        const auto* const value = std::get_if<int64_t>(&row[i]);
        return value != nullptr ? std::to_string(*value) : "-";
      }
      return std::string("?");
    };
    return std::get<std::string>(row.front()) + "  " + figure("width") + "x" + figure("height") + "  coverage " +
           figure("coverage") + " %  quality " + figure("quality") + " and " + figure("field_quality") + "  snr " +
           figure("snr") + "  bad columns " + figure("bad_columns") + "  bad rows " + figure("bad_rows") +
           "  bad pixels " + figure("bad_pixels") + "  bubble pixels " + figure("bubble_pixels");
  }

  Format format_;
};

/** A file as it was last seen. */
struct Seen {
  int64_t size = -1;
  timespec changed = {};
  Clock::time_point since = {};  // when it was first seen like this
  bool done = false;             // its lines are printed

  bool is(const struct stat& status) const {
    return size == status.st_size && changed.tv_sec == status.st_mtim.tv_sec &&
           changed.tv_nsec == status.st_mtim.tv_nsec;
  }
};

class Watch {
 public:
  explicit Watch(const Options& options) : options_(options), lines_(options.format) {}

  /** Takes what lies in the folder for known. */
  void ignore_present() {
    for (auto& [path, seen] : look()) seen->done = true;
  }

  /** Prints files that became complete. Returns whether there are any that did not. */
  bool step() {
    bool waiting = false;
    for (auto& [path, seen] : look()) {
      if (seen->done) continue;
      const auto still = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - seen->since).count();
      if (still >= options_.settle) seen->done = print(path, still >= int64_t{kPatience} * options_.settle);
      waiting = waiting || !seen->done;
    }
    return waiting;
  }

  Exit exit() const { return exit_; }

 private:
  // The frames in the folder, and what is known of them. Forgets files that are gone.
  std::vector<std::pair<std::string, Seen*>> look() {
    std::map<std::string, Seen> now;
    std::vector<std::pair<std::string, Seen*>> order;
    for (const std::string& path : list_files(options_.folder)) {
      struct stat status = {};
      if (!is_frame_name(path, options_.reading.reads_raw()) || stat(path.c_str(), &status) != 0) continue;
      Seen& seen = now[path] = seen_[path];
      if (!seen.is(status)) seen = {status.st_size, status.st_mtim, Clock::now(), false};
      order.emplace_back(path, &seen);
    }
    seen_ = std::move(now);
    return order;
  }

  // Prints the lines of a file. One that cannot be read may still be written to: unless it is the last try, nothing is
  // printed and it is left for later. Returns whether it is done with.
  bool print(const std::string& path, bool last_try) {
    FrameReader reader({path}, options_.reading);
    for (bool first = true;; first = false) {
      try {
        const std::optional<Encoded> encoded = reader.next();
        if (!encoded) return true;
        const Frame frame = decode(*encoded, options_.reading);
        if (first) announce(frame);
        add(frame);
      } catch (const Failure& failure) {
        if (first && !last_try) return false;
        report(failure);
        exit_ = worse(exit_, failure.exit());
      }
    }
  }

  void add(const Frame& frame) {
    std::string error;
    std::vector<Cell> row = measure_all(frame, error);
    row.insert(row.begin(), frame.name);
    row.push_back(error.empty() ? Cell() : Cell(error));
    lines_.add(row);
    if (error.empty()) return;
    report(Failure(Exit::kRefused, frame.name, error));
    exit_ = worse(exit_, Exit::kRefused);
  }

  const Options& options_;
  Lines lines_;
  std::map<std::string, Seen> seen_;
  Exit exit_ = Exit::kDone;
};

Exit run(const Options& options) {
  catch_interrupts();
  Watch watch(options);
  if (!options.once && !options.all) watch.ignore_present();
  if (!options.once && isatty(STDERR_FILENO) != 0) note(options.folder, "watched for frames until Ctrl-C");
  while (!interrupted()) {
    const bool waiting = watch.step();
    if (options.once && !waiting) break;
    const timespec pause = {0, kPause * 1000000};
    nanosleep(&pause, nullptr);
  }
  return watch.exit();
}

}  // namespace

void add_watch(Commands& commands) {
  commands.add<Options>(
      {.name = "watch",
       .summary = "Measures frames as they arrive in a folder",
       .examples = {"quofp watch captures/", "quofp watch captures/ --format csv >> captures.csv",
                    "quofp watch captures/ --size 160x160        # raw frames, too", "quofp watch captures/ --once"},
       .details =
           "One line a frame, once its file has not changed for the settling time; a file that changes later is\n"
           "measured again. Frames that are there already are left out unless asked for. CSV and JSON have the "
           "columns\n"
           "of quofp batch, JSON one object a line. Ctrl-C ends it, with exit code 0 unless a frame was refused or\n"
           "could not be read."},
      define, run);
}

}  // namespace quofp
