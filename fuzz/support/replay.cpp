// Stand-alone runner for a fuzz target: runs the inputs in the files and folders given, without libFuzzer. Reads them
// by C functions, which the memory sanitizer knows; the C++ library's would need a build of their own.
//
// Where words have 32 bits, folders of file systems with 64-bit offsets are read only when this is asked for.
#define _FILE_OFFSET_BITS 64
#include <dirent.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "support/fuzz.h"

namespace {

// The files of a folder, or the file itself.
void collect(const std::string& path, std::vector<std::string>& files) {
  DIR* const folder = opendir(path.c_str());
  if (folder == nullptr) {
    files.push_back(path);
    return;
  }
  while (const dirent* entry = readdir(folder)) {
    if (entry->d_name[0] != '.') files.push_back(path + "/" + entry->d_name);
  }
  closedir(folder);
}

bool run(const std::string& path) {
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  quo_fuzz::Bytes bytes;
  for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file)) bytes.push_back(static_cast<uint8_t>(byte));
  std::fclose(file);
  std::fprintf(stderr, "%s\n", path.c_str());  // the last one named is the one that failed
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> files;
  for (int i = 1; i < argc; i++) collect(argv[i], files);
  std::sort(files.begin(), files.end());
  for (const std::string& file : files) {
    if (run(file)) continue;
    std::fprintf(stderr, "%s cannot be read\n", file.c_str());
    return 1;
  }
  std::printf("%zu inputs replayed\n", files.size());
  return files.empty() ? 1 : 0;
}
