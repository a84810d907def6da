#include "golden/hooks.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "quoFPAlg.h"

// The memory sanitizer follows what nobody wrote; elsewhere fresh memory holds a value that no result depends on.
#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#define QUO_FRESH_MEMORY_UNDEFINED 1
#endif
#endif

namespace golden {
namespace {

struct Recording {
  Digest* digest = nullptr;
  Failing failing;
  bool with_sizes = true;
  uint64_t asked = 0;
  std::vector<void*> live;
};

thread_local Recording recording;

bool shall_fail(uint64_t index) {
  const Failing& failing = recording.failing;
  return index == failing.index || (failing.and_later && index > failing.index);
}

[[noreturn]] void give_up(const char* reason) {
  std::fprintf(stderr, "%s\n", reason);
  std::abort();
}

}  // namespace

void start_recording(Digest& digest, Failing failing, bool with_sizes) {
  recording = {&digest, failing, with_sizes, 0, {}};
}

uint64_t stop_recording() {
  if (!recording.live.empty()) give_up("a call did not give back its memory");
  const uint64_t asked = recording.asked;
  recording = {};
  return asked;
}

}  // namespace golden

void* tev_quo_malloc(uint32_t size) {
  auto& recording = golden::recording;
  if (recording.digest == nullptr) return std::malloc(size);
  recording.digest->add(recording.with_sizes ? size : 0U);
  if (golden::shall_fail(recording.asked++)) return nullptr;
  void* const block = std::malloc(size > 0 ? size : 1);
  if (block == nullptr) golden::give_up("out of memory");
#ifndef QUO_FRESH_MEMORY_UNDEFINED
  std::memset(block, 0xA5, size);
#endif
  recording.live.push_back(block);
  return block;
}

void tev_quo_free(void* block) {
  auto& recording = golden::recording;
  if (block != nullptr && recording.digest != nullptr && std::erase(recording.live, block) != 1) {
    golden::give_up("a block was freed that was not handed out");
  }
  std::free(block);
}

void tev_quo_log(const char* tag, uint32_t length) {
  if (golden::recording.digest == nullptr) return;
  golden::recording.digest->add_bytes(tag, std::strlen(tag));
  golden::recording.digest->add(length);
}
