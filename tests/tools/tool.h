// Runs the built tool as a user would, in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/frames.h"

namespace quo_test {

/** What a run of the tool left behind. */
struct Outcome {
  int exit;
  std::string out;
  std::string err;
};

using Bytes = std::vector<uint8_t>;

/** Rows of CSV text, the names of the columns first. */
using Rows = std::vector<std::vector<std::string>>;

/** Each test runs in a fresh folder, removed afterwards; file names are relative to it. */
class Tool : public testing::Test {
 protected:
  Tool();
  ~Tool() override;

  /** Runs `quofp` with the rest of a shell command line, quotes and redirections and all. */
  Outcome quofp(const std::string& arguments) const;

  /** The same for a run that must succeed. Returns standard output. */
  std::string quofp_done(const std::string& arguments) const;

  /** The same as rows of `--format csv`. */
  Rows rows(const std::string& arguments) const;

  /** Runs what must end with this exit code and a message that contains `words`. */
  Outcome expect_exit(int exit, const std::string& arguments, const std::string& words = "") const;

  /** Every one of the options is misuse of the command: exit code 2, a message, and nothing on standard output. */
  void expect_misuse(const std::string& command, const std::vector<std::string>& options) const;

  /** Makes a frame by `quofp synth` and returns it. */
  Image synth(const std::string& name, const std::string& options = "") const;

  std::filesystem::path path(const std::string& name) const { return folder_ / name; }
  bool exists(const std::string& name) const { return std::filesystem::exists(path(name)); }
  std::string read(const std::string& name) const;
  Bytes read_bytes(const std::string& name) const;
  void write(const std::string& name, const std::string& content) const;
  void write(const std::string& name, const Bytes& content) const;

  /** Reads a picture as gray pixels with the system's libpng, not through the tool. */
  Image read_png(const std::string& name) const;

  /** Writes a frame as binary graymap. */
  void write_pgm(const std::string& name, const Image& image) const;

 private:
  std::filesystem::path folder_;
};

/** Splits CSV text without quoted fields. */
Rows csv_rows(const std::string& text);

/** Expects an enlarged picture of the frame that shows the marked pixels, and no others, in other grays. */
void expect_marks(const Image& picture, const Image& frame, const uint8_t* marks);

}  // namespace quo_test
