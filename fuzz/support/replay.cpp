// Stand-alone runner for a fuzz target: runs the inputs in the files and folders given, without libFuzzer.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/fuzz.h"

namespace {

namespace fs = std::filesystem;

void run(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
  const quo_fuzz::Bytes bytes(content.begin(), content.end());
  std::fprintf(stderr, "%s\n", path.c_str());  // the last one named is the one that failed
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<fs::path> inputs;
  for (int i = 1; i < argc; i++) {
    if (!fs::is_directory(argv[i])) {
      inputs.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(argv[i])) inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  for (const fs::path& input : inputs) run(input);
  std::printf("%zu inputs replayed\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}
