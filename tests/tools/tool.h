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

/** Each test runs in a fresh folder, removed afterwards; file names are relative to it. */
class Tool : public testing::Test {
 protected:
  Tool();
  ~Tool() override;

  /** Runs `quofp` with the rest of a shell command line, quotes and redirections and all. */
  Outcome quofp(const std::string& arguments) const;

  /** The same for a run that must succeed. Returns standard output. */
  std::string quofp_done(const std::string& arguments) const;

  std::filesystem::path path(const std::string& name) const { return folder_ / name; }
  bool exists(const std::string& name) const { return std::filesystem::exists(path(name)); }
  std::string read(const std::string& name) const;
  void write(const std::string& name, const std::string& content) const;

  /** Reads a picture as gray pixels with the system's libpng, not through the tool. */
  Image read_png(const std::string& name) const;

  /** Writes a frame as binary graymap. */
  void write_pgm(const std::string& name, const Image& image) const;

 private:
  std::filesystem::path folder_;
};

/** Rows of CSV text without quoted fields; the first row holds the column names. */
std::vector<std::vector<std::string>> csv_rows(const std::string& text);

}  // namespace quo_test
