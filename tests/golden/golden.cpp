#include "golden/golden.h"

#include <cinttypes>
#include <cstring>
#include <map>

#include "golden/hooks.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

// A group is a list of sizes; each is one case without and one for each allocation that may fail.
struct Group {
  const char* name;
  std::vector<std::pair<int32_t, int32_t>> sizes;
};

std::vector<Group> groups() {
  std::vector<Group> result{{"small", {}}, {"middle", {}}, {"sensor", {}}};
  for (int32_t height = 0; height <= 17; height++) {
    for (int32_t width = 0; width <= 17; width++) result[0].sizes.emplace_back(width, height);
  }
  Random random(7);
  for (int i = 0; i < 60; i++) {
    const int32_t width = random.between(1, 72);
    result[1].sizes.emplace_back(width, random.between(1, 72));
  }
  result[2].sizes = {{160, 160}, {96, 96}, {80, 208}, {131, 117}, {192, 192}, {64, 260}};
  return result;
}

void run_case(const Function& function, uint64_t seed, std::pair<int32_t, int32_t> size, Digest& digest) {
  auto call = [&](uint64_t failing, bool and_later) {
    Case c(seed, size.first, size.second, digest);
    start_recording(digest, failing, and_later);
    function.call(c);
    return stop_recording();
  };
  const uint64_t allocations = call(UINT64_MAX, false);
  for (uint64_t index = 0; index < allocations && index < 12; index++) {
    call(index, false);
    call(index, true);
  }
}

uint64_t seed_of(const std::string& name) {
  Digest digest;
  digest.add_bytes(name.data(), name.size());
  return digest.value();
}

std::vector<Hash> run_all() {
  std::vector<Hash> result;
  for (const Function& function : functions()) {
    for (Hash& hash : run(function)) result.push_back(std::move(hash));
  }
  return result;
}

bool read(const std::string& path, std::map<std::string, uint64_t>& hashes) {
  std::FILE* const file = std::fopen(path.c_str(), "r");
  if (file == nullptr) return false;
  char name[128];
  uint64_t value;
  char line[256];
  while (std::fgets(line, sizeof line, file) != nullptr) {
    if (line[0] != '#' && std::sscanf(line, "%127s %" SCNx64, name, &value) == 2) hashes[name] = value;
  }
  std::fclose(file);
  return true;
}

}  // namespace

void Case::give_back(void* block) { tev_quo_free(block); }

std::vector<Function> functions() {
  std::vector<Function> result;
  for (const auto* list : {&kFrameFunctions}) result.insert(result.end(), list->begin(), list->end());
  return result;
}

std::vector<Hash> run(const Function& function) {
  std::vector<Hash> result;
  for (const Group& group : groups()) {
    const std::string name = std::string(function.name) + "/" + group.name;
    Digest digest;
    uint64_t seed = seed_of(name);
    for (const auto& size : group.sizes) run_case(function, seed++, size, digest);
    result.push_back({name, digest.value()});
  }
  return result;
}

int compare(const std::string& path, std::FILE* out) {
  std::map<std::string, uint64_t> expected;
  if (!read(path, expected)) {
    std::fprintf(out, "%s: cannot be read\n", path.c_str());
    return 3;
  }
  size_t equal = 0, wrong = 0;
  for (const Hash& hash : run_all()) {
    const auto entry = expected.find(hash.name);
    if (entry != expected.end() && entry->second == hash.value) {
      equal++;
    } else {
      std::fprintf(out, "%s: %s\n", hash.name.c_str(), entry == expected.end() ? "not in the file" : "differs");
      wrong++;
    }
    if (entry != expected.end()) expected.erase(entry);
  }
  for (const auto& entry : expected) std::fprintf(out, "%s: in the file, not run\n", entry.first.c_str());
  std::fprintf(out, "%zu hashes equal, %zu differ\n", equal, wrong + expected.size());
  return wrong + expected.size() == 0 ? 0 : 1;
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
  for (const Hash& hash : run_all()) std::fprintf(file, "%s %016" PRIx64 "\n", hash.name.c_str(), hash.value);
  const bool written = std::fclose(file) == 0;
  return written ? 0 : 3;
}

}  // namespace golden
