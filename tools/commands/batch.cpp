// quofp batch: every figure of the library for any number of frames.
#include <algorithm>
#include <set>
#include <thread>

#include "commands.h"
#include "inputs.h"
#include "interrupt.h"
#include "measures.h"
#include "ordered_workers.h"
#include "progress.h"
#include "row_file.h"

namespace quofp {
namespace {

constexpr size_t kPendingPerThread = 8;  // frames in memory

struct Options {
  Inputs inputs;
  std::string output;
  bool csv = false;
  bool json = false;
  bool resume = false;
  int32_t jobs = 0;
};

void define(CLI::App& command, Options& options) {
  add_inputs(command, options.inputs);
  auto* const csv = command.add_flag("--csv", options.csv, "rows as CSV (default)");
  command.add_flag("--json", options.json, "rows as a JSON array, one object a line")->excludes(csv);
  auto* const output =
      command.add_option("-o,--output", options.output, "where the rows go [standard output]")->type_name("FILE");
  command.add_flag("--resume", options.resume, "goes on after the rows that the output file has already")
      ->needs(output);
  add_number_option(command, "--jobs", options.jobs, 0, 256, "frames measured at a time; 0 for one on every processor");
}

/** A frame to be measured, or why it cannot be. */
struct Job {
  Encoded encoded;
  std::string error;
  Exit exit = Exit::kDone;
};

struct Result {
  std::string name;
  std::string line;
  std::string remark;
  std::string error;
  Exit exit = Exit::kDone;
};

Result measure(const Job& job, const Reading& reading, const RowFile& file) {
  Result result{job.encoded.name, {}, {}, job.error, job.exit};
  std::vector<Cell> row(frame_columns().size());
  if (result.error.empty()) {
    try {
      const Frame frame = decode(job.encoded, reading);
      result.remark = frame.remark;
      const std::vector<Cell> cells = measure_all(frame, result.error);
      std::copy(cells.begin(), cells.end(), row.begin() + 1);
      if (!result.error.empty()) result.exit = Exit::kRefused;
    } catch (const Failure& failure) {
      result.error = failure.reason();
      result.exit = failure.exit();
    } catch (const std::bad_alloc&) {
      result.error = "there is not enough memory for it";
      result.exit = Exit::kInputOutput;
    }
  }
  row.front() = result.name;
  if (!result.error.empty()) row.back() = result.error;
  result.line = file.line(row);
  return result;
}

// Takes the next frame, or the failure in its place. Returns whether there was one.
bool take_next(FrameReader& reader, Job& job) {
  try {
    std::optional<Encoded> encoded = reader.next();
    if (encoded) job.encoded = std::move(*encoded);
    return encoded.has_value();
  } catch (const Failure& failure) {
    job.encoded.name = failure.subject();
    job.error = failure.reason();
    job.exit = failure.exit();
    return true;
  }
}

// Passes over the frames whose rows are there.
void skip_rows(FrameReader& reader, const RowFile& file, const std::string& output) {
  if (file.rows() == 0) return;
  for (size_t i = 1; i < file.rows(); i++) reader.skip();
  Job last;
  if (take_next(reader, last) && last.encoded.name == file.last_name()) return;
  throw usage_failure("--resume: row " + std::to_string(file.rows()) + " of " + output + " is of " + file.last_name() +
                      ", but that frame is " +
                      (last.encoded.name.empty() ? "not among those given" : last.encoded.name));
}

/** Writes rows as they become ready, and says on standard error what is wrong with frames. */
class Rows {
 public:
  Rows(RowFile& file, std::optional<size_t> total) : file_(file), progress_("measuring", total, file.rows()) {}

  void add(const Result& result) {
    file_.write(result.line);
    if (!result.remark.empty() && remarks_.insert(result.remark).second) {
      progress_.clear();
      note(result.name, result.remark + " (and other frames like it)");
    }
    if (!result.error.empty()) {
      progress_.clear();
      report(Failure(result.exit, result.name, result.error));
    }
    exit_ = worse(exit_, result.exit);
    progress_.step();
  }

  Exit exit() const { return exit_; }

 private:
  RowFile& file_;
  Progress progress_;
  std::set<std::string> remarks_;
  Exit exit_ = Exit::kDone;
};

size_t thread_count(const Options& options) {
  const auto jobs = static_cast<size_t>(options.jobs);
  return jobs != 0 ? jobs : std::max(1U, std::thread::hardware_concurrency());
}

Exit run(const Options& options) {
  FrameReader reader(options.inputs.files, options.inputs.reading);
  RowFile file(options.output, options.json, frame_columns(), options.resume);
  skip_rows(reader, file, options.output);
  file.open();
  catch_interrupts();
  Rows rows(file, reader.total());
  const size_t threads = thread_count(options);
  OrderedWorkers<Job, Result> workers(
      threads, kPendingPerThread * threads, [&](const Job& job) { return measure(job, options.inputs.reading, file); },
      [&](const Result& result) { rows.add(result); });
  for (;;) {
    Job job;
    if (interrupted() || !take_next(reader, job) || interrupted()) break;  // a frame read in part is none
    workers.give(std::move(job));
  }
  workers.finish();
  file.finish();
  if (!interrupted()) return worse(rows.exit(), file.errors() > 0 ? Exit::kRefused : Exit::kDone);
  note(options.output.empty() ? "standard output" : options.output,
       "interrupted after " + std::to_string(file.rows()) + " rows; --resume goes on after them");
  return Exit::kInterrupted;
}

}  // namespace

void add_batch(Commands& commands) {
  commands.add<Options>(
      {.name = "batch",
       .summary = "Every figure of the library for any number of frames, on all processors",
       .examples = {"quofp batch lot/ -o lot.csv", "quofp batch dump.raw --size 160x160 --count 0 --json -o dump.json",
                    "quofp batch lot/ -o lot.csv --resume      # after it was interrupted",
                    "sensor-dump | quofp batch - --size 160x160 --count 0 > dump.csv"},
       .details =
           "One row a frame, in the order given; columns.md of the documentation describes the columns. A frame that\n"
           "cannot be read or that the library refuses has its row too, with the reason in the column error, and the\n"
           "exit code is 1 or 3. Cells are empty where a frame is too small for a figure. Ctrl-C ends the run with\n"
           "the rows of all frames begun, and exit code 130."},
      define, run);
}

}  // namespace quofp
