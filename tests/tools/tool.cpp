#include "tools/tool.h"

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
  setenv("LSAN_OPTIONS", "print_suppressions=0:suppressions=" QUO_LEAK_SUPPRESSIONS,
         1);  // read by sanitizer builds only
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

std::string Tool::read(const std::string& name) const { return slurp(path(name)); }

void Tool::write(const std::string& name, const std::string& content) const {
  std::ofstream(path(name), std::ios::binary) << content;
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

std::vector<std::vector<std::string>> csv_rows(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::vector<std::string>& row = rows.emplace_back();
    line += ',';  // so that an empty last field counts
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, ',');) row.push_back(field);
  }
  return rows;
}

}  // namespace quo_test
