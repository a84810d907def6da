// The frames that a command works on, and the options that say how to read them.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "frame_io.h"

namespace quofp {

/** Input files and how to read them. */
struct Inputs {
  std::vector<std::string> files;
  std::optional<Size> raw_size;

  Frame read(const std::string& file) const { return read_frame(file, raw_size); }
  /** The frame of a command that takes one. */
  Frame read_only() const { return read(files.at(0)); }
};

/** Declares IN..., one or more frames, and the options for reading them. */
void add_inputs(CLI::App& command, Inputs& inputs);

/** Declares IN, exactly one frame, and the options for reading it. */
void add_input(CLI::App& command, Inputs& inputs);

/** Declares the options for reading frames alone, for commands whose arguments are something else. */
void add_reading_options(CLI::App& command, Inputs& inputs);

/** Where frames go: a file for one input, a folder for several. */
struct Output {
  std::string path;
};

/** Declares -o. */
void add_output(CLI::App& command, Output& output, const std::string& description);

/** The output of each input. With several inputs, or when the path ends in a slash or is a folder, outputs lie in that
 *  folder, named as the inputs with another ending. */
class Outputs {
 public:
  /** @throws Failure when two inputs would share an output, or when the folder cannot be made */
  Outputs(const Inputs& inputs, const Output& output, const std::string& ending = ".png");

  const std::string& path_for(const std::string& file) const { return paths_.at(file); }

 private:
  std::map<std::string, std::string> paths_;
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
  return for_each_item(inputs.files, [&](const std::string& file) {
    Frame frame = inputs.read(file);
    return work(frame);
  });
}

}  // namespace quofp
