#include "tools/tool.h"

#include <gmock/gmock.h>
#include <png.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace quo_test {
namespace {

std::string slurp(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Tool::Tool() {
  std::string name = (std::filesystem::temp_directory_path() / "quofp-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) std::abort();
  folder_ = name;
  // Read by sanitizer builds only.
  setenv("LSAN_OPTIONS", "print_suppressions=0:suppressions=" QUO_LEAK_SUPPRESSIONS, 1);
}

Tool::~Tool() { std::filesystem::remove_all(folder_); }

Outcome Tool::quofp(const std::string& arguments) const {
  const std::string out = path(".out").string(), err = path(".err").string();
  const std::string line = "cd '" + folder_.string() + "' && >.out 2>.err '" QUOFP_BINARY "' " + arguments;
  const int status = std::system(line.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(out), slurp(err)};
}

std::string Tool::quofp_done(const std::string& arguments) const {
  const Outcome run = quofp(arguments);
  EXPECT_EQ(run.exit, 0) << "quofp " << arguments << "\n" << run.err;
  return run.out;
}

Rows Tool::rows(const std::string& arguments) const { return csv_rows(quofp_done(arguments + " --format csv")); }

Outcome Tool::expect_exit(int exit, const std::string& arguments, const std::string& words) const {
  const Outcome run = quofp(arguments);
  EXPECT_EQ(run.exit, exit) << "quofp " << arguments;
  EXPECT_THAT(run.err, testing::HasSubstr(words)) << "quofp " << arguments;
  return run;
}

void Tool::expect_misuse(const std::string& command, const std::vector<std::string>& options) const {
  for (const std::string& option : options) {
    const Outcome run = expect_exit(2, command + " " + option);
    EXPECT_EQ(run.out, "") << command << " " << option;
    EXPECT_NE(run.err, "") << command << " " << option;
  }
}

Image Tool::synth(const std::string& name, const std::string& options) const {
  quofp_done("synth -o " + name + " " + options);
  return read_png(name);
}

std::string Tool::read(const std::string& name) const { return slurp(path(name)); }

Bytes Tool::read_bytes(const std::string& name) const {
  const std::string content = read(name);
  return {content.begin(), content.end()};
}

void Tool::write(const std::string& name, const std::string& content) const {
  std::ofstream(path(name), std::ios::binary) << content;
}

void Tool::write(const std::string& name, const Bytes& content) const {
  write(name, std::string(content.begin(), content.end()));
}

Image Tool::read_png(const std::string& name) const {
  png_image png = {};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&png, path(name).c_str()) == 0) {
    ADD_FAILURE() << name << ": " << png.message;
    return {};
  }
  png.format = PNG_FORMAT_GRAY;
  Image image(static_cast<int32_t>(png.width), static_cast<int32_t>(png.height));
  EXPECT_NE(png_image_finish_read(&png, nullptr, image.data(), 0, nullptr), 0) << png.message;
  return image;
}

void Tool::write_pgm(const std::string& name, const Image& image) const {
  const std::string header = "P5 " + std::to_string(image.width) + " " + std::to_string(image.height) + " 255\n";
  write(name, header + std::string(image.pixels.begin(), image.pixels.end()));
}

Rows csv_rows(const std::string& text) {
  Rows rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::vector<std::string>& row = rows.emplace_back();
    line += ',';  // so that an empty last field counts
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, ',');) row.push_back(field);
  }
  return rows;
}

void expect_marks(const Image& picture, const Image& frame, const uint8_t* marks) {
  const int32_t zoom = picture.width / frame.width;
  ASSERT_TRUE(picture.width == frame.width * zoom && picture.height == frame.height * zoom);
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) {
      const bool marked = marks[y / zoom * frame.width + x / zoom] != 0;
      ASSERT_EQ(picture.at(x, y) != frame.at(x / zoom, y / zoom), marked) << x << "," << y;
    }
  }
}

}  // namespace quo_test
