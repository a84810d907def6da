// Compares this machine's results with the golden hashes.
#include <string>

#include "golden/golden.h"

int main(int argc, char** argv) {
  const std::string first = argc > 1 ? argv[1] : "";
  if (argc == 2 && first[0] != '-') return golden::compare(first, golden::Guard::kAfter, stdout);
  if (argc == 3 && first == "--guard-before") return golden::compare(argv[2], golden::Guard::kBefore, stdout);
  if (argc == 3 && first == "--threads") return golden::compare_in_threads(argv[2], 8, stdout);
  if (argc == 3 && first == "--write") return golden::write(argv[2], stdout);
  std::fprintf(stderr,
               "usage: golden FILE                  compares; an unreadable page follows every buffer\n"
               "       golden --guard-before FILE   compares; an unreadable page precedes every buffer\n"
               "       golden --threads FILE        compares in eight threads at once\n"
               "       golden --write FILE          writes the hashes anew\n");
  return 2;
}
