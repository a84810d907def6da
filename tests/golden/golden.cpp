#include "golden/golden.h"

#include <algorithm>
#include <cinttypes>
#include <cstdlib>
#include <thread>

#include "golden/functions.h"
#include "golden/hooks.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

struct Size {
  int32_t width;
  int32_t height;
};

struct Group {
  const char* name;
  std::vector<Size> sizes;
};

Group small_sizes() {
  Group group{"small", {}};
  for (int32_t height = -1; height <= 17; height++) {
    for (int32_t width = -1; width <= 17; width++) group.sizes.push_back({width, height});
  }
  return group;
}

Group middle_sizes() {
  Group group{"middle", {}};
  quo_test::Random random(7);
  for (int i = 0; i < 80; i++) {
    const int32_t width = random.between(1, 72);
    group.sizes.push_back({width, random.between(1, 72)});
  }
  return group;
}

Group sensor_sizes() { return {"sensor", {{160, 160}, {96, 96}, {80, 208}, {131, 117}, {192, 192}, {64, 260}}}; }

std::vector<Group> all_groups() { return {small_sizes(), middle_sizes(), sensor_sizes()}; }

struct Outcome {
  uint64_t hash;
  uint64_t allocations;
};

Outcome call(const Function& function, uint64_t seed, Size size, Guard guard, Failing failing) {
  Case c(seed, size.width, size.height, guard);
  start_recording(c.digest(), failing, !function.abi_sizes);
  function.call(c);
  const uint64_t allocations = stop_recording();
  return {c.finish(), allocations};
}

void run_case(const Function& function, uint64_t seed, Size size, Guard guard, Digest& digest) {
  const Outcome normal = call(function, seed, size, guard, {});
  digest.add(normal.hash);
  for (uint64_t index = 0; index < normal.allocations; index++) {
    for (const bool and_later : {false, true}) digest.add(call(function, seed, size, guard, {index, and_later}).hash);
  }
  if (call(function, seed, size, guard, {}).hash != normal.hash) {
    std::fprintf(stderr, "%s: a second call differs at %d x %d\n", function.name, size.width, size.height);
    std::abort();
  }
}

uint64_t seed_of(const std::string& name) {
  Digest digest;
  digest.add_bytes(name.data(), name.size());
  return digest.value();
}

using Expected = std::vector<Hash>;

struct Comparison {
  size_t equal = 0;
  std::vector<std::string> complaints;
};

// A group of calls of one function.
Hash run_group(const Function& function, const Group& group, Guard guard) {
  const std::string name = std::string(function.name) + "/" + group.name;
  Digest digest;
  uint64_t seed = seed_of(name);
  for (const Size size : group.sizes) run_case(function, seed++, size, guard, digest);
  return {name, digest.value()};
}

// Runs the groups of all functions, beginning with the function at `first` and going round, so that threads do
// different things at a time. Hashes of other groups in the file are left alone.
void check_groups(const Expected& expected, const std::vector<Group>& groups, Guard guard, size_t first,
                  const std::function<void(const Check&)>& report) {
  const std::vector<Function> all = functions();
  for (size_t i = 0; i < all.size(); i++) {
    for (const Group& group : groups) {
      const Hash hash = run_group(all[(first + i) % all.size()], group, guard);
      const auto entry =
          std::find_if(expected.begin(), expected.end(), [&](const Hash& e) { return e.name == hash.name; });
      report({hash, entry == expected.end() ? std::nullopt : std::optional(entry->value)});
    }
  }
}

Comparison compare_groups(const Expected& expected, const std::vector<Group>& groups, Guard guard, size_t first) {
  Comparison result;
  check_groups(expected, groups, guard, first, [&result](const Check& check) {
    result.equal += check.equal();
    if (!check.equal())
      result.complaints.push_back(check.actual.name + (check.expected ? ": differs" : ": not in the file"));
  });
  return result;
}

Expected parse(const std::string& text) {
  Expected hashes;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    const std::string line = text.substr(at, end - at);
    char name[128];
    uint64_t value;
    if (line[0] != '#' && std::sscanf(line.c_str(), "%127s %" SCNx64, name, &value) == 2)
      hashes.push_back({name, value});
    at = end + 1;
  }
  return hashes;
}

// By C functions, which the memory sanitizer knows; streams would need a C++ library built for it.
bool read(const std::string& path, Expected& hashes) {
  std::FILE* const file = std::fopen(path.c_str(), "r");
  if (file == nullptr) return false;
  std::string text;
  for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file)) text.push_back(static_cast<char>(byte));
  std::fclose(file);
  hashes = parse(text);
  return true;
}

}  // namespace

quo_test::Guarded& Case::keep(std::span<const uint8_t> bytes, bool changes) {
  kept_.push_back({std::make_unique<quo_test::Guarded>(bytes, guard_), changes});
  return *kept_.back().buffer;
}

void Case::give_back(void* block) { tev_quo_free(block); }

uint64_t Case::finish() {
  for (const Kept& kept : kept_) {
    const std::span<const uint8_t> bytes = kept.buffer->bytes();
    if (kept.changes) digest_.add_bytes(bytes.data(), bytes.size());
  }
  return digest_.value();
}

std::vector<Function> functions() {
  std::vector<Function> result;
  for (const auto* list : {&kFrameFunctions, &kPreprocFunctions, &kQualityFunctions, &kDefectFunctions,
                           &kSpTemplateFunctions, &kSignalFunctions, &kCalibrationFunctions, &kToolboxFunctions}) {
    result.insert(result.end(), list->begin(), list->end());
  }
  return result;
}

void check_all(const std::string& text, Guard guard, const std::function<void(const Check&)>& report) {
  check_groups(parse(text), all_groups(), guard, 0, report);
}

int compare(const std::string& path, Guard guard, std::FILE* out) {
  Expected expected;
  if (!read(path, expected)) {
    std::fprintf(out, "%s: cannot be read\n", path.c_str());
    return 3;
  }
  Comparison result = compare_groups(expected, all_groups(), guard, 0);
  if (result.equal + result.complaints.size() < expected.size()) {
    result.complaints.push_back("the file has hashes of functions that are not there");
  }
  for (const std::string& line : result.complaints) std::fprintf(out, "%s\n", line.c_str());
  std::fprintf(out, "%zu hashes equal, %zu differ\n", result.equal, result.complaints.size());
  return result.complaints.empty() ? 0 : 1;
}

int compare_in_threads(const std::string& path, unsigned count, std::FILE* out) {
  Expected expected;
  if (!read(path, expected)) {
    std::fprintf(out, "%s: cannot be read\n", path.c_str());
    return 3;
  }
  std::vector<Comparison> results(count);
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < count; i++) {
    threads.emplace_back([&, i] {
      results[i] = compare_groups(expected, {middle_sizes()}, i % 2 == 0 ? Guard::kAfter : Guard::kBefore, i * 7);
    });
  }
  for (std::thread& thread : threads) thread.join();
  size_t wrong = 0;
  for (const Comparison& result : results) {
    for (const std::string& line : result.complaints) std::fprintf(out, "%s\n", line.c_str());
    wrong += result.complaints.size();
  }
  std::fprintf(out, "%u threads, %zu hashes differ\n", count, wrong);
  return wrong == 0 ? 0 : 1;
}

int write(const std::string& path, std::FILE* out) {
  std::FILE* const file = std::fopen(path.c_str(), "w");
  if (file == nullptr) {
    std::fprintf(out, "%s: cannot be written\n", path.c_str());
    return 3;
  }
  std::fprintf(
      file, "# Golden hashes, the same for every target. A changed hash is a changed result: it needs an entry in\n");
  std::fprintf(file, "# CHANGELOG.md, and this file is then written anew with golden --write.\n");
  for (const Function& function : functions()) {
    for (const Group& group : all_groups()) {
      const Hash hash = run_group(function, group, Guard::kAfter);
      std::fprintf(file, "%s %016" PRIx64 "\n", hash.name.c_str(), hash.value);
    }
  }
  return std::fclose(file) == 0 ? 0 : 3;
}

}  // namespace golden
