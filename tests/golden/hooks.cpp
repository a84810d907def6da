#include "golden/hooks.h"

#include <cstdlib>
#include <cstring>

#include "quoFPAlg.h"

namespace golden {
namespace {

struct Recording {
  Digest* digest = nullptr;
  uint64_t asked = 0;
  uint64_t failing = UINT64_MAX;
  bool and_later = false;
};

thread_local Recording recording;

bool shall_fail(uint64_t index) {
  return index == recording.failing || (recording.and_later && index > recording.failing);
}

}  // namespace

void start_recording(Digest& digest, uint64_t failing, bool and_later) { recording = {&digest, 0, failing, and_later}; }

uint64_t stop_recording() {
  const uint64_t asked = recording.asked;
  recording = {};
  return asked;
}

}  // namespace golden

void* tev_quo_malloc(uint32_t size) {
  auto& recording = golden::recording;
  if (recording.digest == nullptr) return std::malloc(size);
  recording.digest->add(size);
  if (golden::shall_fail(recording.asked++)) return nullptr;
  void* const block = std::malloc(size > 0 ? size : 1);
  if (block != nullptr) std::memset(block, 0xA5, size);
  return block;
}

void tev_quo_free(void* block) { std::free(block); }

void tev_quo_log(const char* tag, uint32_t length) {
  if (golden::recording.digest == nullptr) return;
  golden::recording.digest->add_bytes(tag, std::strlen(tag));
  golden::recording.digest->add(length);
}
