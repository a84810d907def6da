// golden FILE            compares this machine's results with the golden hashes
// golden --write FILE    writes them anew
#include <cstring>

#include "golden/golden.h"

int main(int argc, char** argv) {
  if (argc == 2) return golden::compare(argv[1], stdout);
  if (argc == 3 && std::strcmp(argv[1], "--write") == 0) return golden::write(argv[2], stdout);
  std::fprintf(stderr, "usage: golden [--write] FILE\n");
  return 2;
}
