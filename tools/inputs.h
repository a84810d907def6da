// The frames that a command works on, and the options that say how to read them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli_forward.h"
#include "failure.h"
#include "frame_reader.h"
#include "table.h"

namespace quofp {

/** What frames to read, and how. */
struct Inputs {
  std::vector<std::string> files;  // the arguments; see expand()
  Reading reading;

  /** The frame of a command that takes one. @throws Failure when the argument stands for several */
  Frame read_only() const;
};

/** Declares IN..., one or more frames, and the options for reading them. */
void add_inputs(CLI::App& command, Inputs& inputs);

/** Declares IN, exactly one frame, and the options for reading it. */
void add_input(CLI::App& command, Inputs& inputs, bool required = true);

/** Declares the options for reading frames alone, for commands whose arguments are something else. */
void add_reading_options(CLI::App& command, Reading& reading);

/** Where frames go: a file for one input, a folder for several. */
struct Output {
  std::string path;
};

/** Declares -o. */
void add_output(CLI::App& command, Output& output, const std::string& description);

/** Declares --format table|csv|json. */
void add_format_option(CLI::App& command, Format& format);

/** The output of each input. With several inputs, or when the path ends in a slash or is a folder, outputs lie in that
 *  folder, named as the inputs with another ending; frame N of a raw file dump.raw is dump-N. */
class Outputs {
 public:
  /** @throws Failure when two inputs would share an output, or when the folder cannot be made */
  Outputs(const Inputs& inputs, const Output& output, const std::string& ending = ".png");

  std::string path_for(const std::string& frame) const;

 private:
  std::string path_;
  std::string ending_;
  bool folder_;
};

/** Makes a folder and those above it unless they exist. @throws Failure */
void make_folder(const std::string& path);

/** Declares `name` as a WxH option. */
CLI::Option* add_size_option(CLI::App& command, const std::string& name, std::optional<Size>& size,
                             const std::string& description);

/** Declares a whole-number option with its bounds and its default in the help: "percent (0 to 100) [75]". */
CLI::Option* add_number_option(CLI::App& command, const std::string& name, int32_t& value, int32_t low, int32_t high,
                               const std::string& description);

/** Reads each frame in turn and calls `work(Frame&)`, which returns an Exit. A file that cannot be read, or a frame
 *  that the library refuses, is reported and the others still get their turn.
 *  @return the worst exit code that occurred */
template <typename Work>
Exit for_each_frame(const Inputs& inputs, Work work) {
  FrameReader reader(inputs.files, inputs.reading);
  Exit exit = Exit::kDone;
  bool more = true;
  const auto next = [&] {
    const std::optional<Encoded> encoded = reader.next();
    more = encoded.has_value();
    if (!more) return Exit::kDone;
    Frame frame = decode(*encoded, inputs.reading);
    if (encoded->first) announce(frame);
    return work(frame);
  };
  while (more) exit = worse(exit, attempt(next));
  return exit;
}

}  // namespace quofp
