// Golden hashes: every function over many generated calls, folded into one hash a group.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "golden/case.h"

namespace golden {

/** A named hash, for example FP_ImagePreproc/sensor. */
struct Hash {
  std::string name;
  uint64_t value;
};

/** A hash of this machine, and that of the same name among the golden ones. */
struct Check {
  Hash actual;
  std::optional<uint64_t> expected;

  bool equal() const { return expected == actual.value; }
};

/** Runs all functions and compares them with the text of a file of golden hashes; calls `report` for each hash. */
void check_all(const std::string& text, Guard guard, const std::function<void(const Check&)>& report);

/** The same with a file; reports to `out`.
 *
 *  Each call is made once with all the memory it asks for, then with its first, second ... allocation failing, alone and
 *  with all later ones, then once more. Ends the program when memory leaks, is freed twice, or when the last result is not
 *  the first.
 *
 *  @param guard  which end of every buffer touches an unreadable page
 *  @return 0 when all are equal, 1 when some differ or are missing, 3 when the file cannot be read */
int compare(const std::string& path, Guard guard, std::FILE* out);

/** The same in `count` threads at once, each of which runs the calls of middle size on buffers of its own. */
int compare_in_threads(const std::string& path, unsigned count, std::FILE* out);

/** Writes the file anew. @return 0, or 3 when it cannot be written */
int write(const std::string& path, std::FILE* out);

}  // namespace golden
