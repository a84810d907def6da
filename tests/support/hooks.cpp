#include "support/hooks.h"

#include <cmath>
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

namespace quo_test {
namespace {

struct State {
  HookRecord record;
  std::vector<void*> live;
  uint64_t failing_index = UINT64_MAX;
  bool fail_later = false;
  uint32_t largest = UINT32_MAX;
  double (*arctangent)(double y, double x) = nullptr;
  uint8_t fresh_byte = 0xA5;
};

State& state() {
  thread_local State instance;
  return instance;
}

bool shall_fail(const State& s, uint64_t index, uint32_t size) {
  return index == s.failing_index || (s.fail_later && index > s.failing_index) || size > s.largest;
}

}  // namespace

const HookRecord& hooks() { return state().record; }

void reset_hooks() {
  const uint8_t fresh_byte = state().fresh_byte;
  state() = State{};
  state().fresh_byte = fresh_byte;
}

void fail_allocation(uint64_t index, bool and_later) {
  state().failing_index = state().record.sizes.size() + index;
  state().fail_later = and_later;
}

void fail_above(uint32_t size) { state().largest = size; }

void set_fresh_byte(uint8_t value) { state().fresh_byte = value; }

void set_arctangent(double (*arctangent)(double y, double x)) { state().arctangent = arctangent; }

}  // namespace quo_test

using quo_test::state;

void* tev_quo_malloc(uint32_t size) {
  auto& s = state();
  const uint64_t index = s.record.sizes.size();
  s.record.sizes.push_back(size);
  void* const block = quo_test::shall_fail(s, index, size) ? nullptr : std::malloc(size > 0 ? size : 1);
  if (block == nullptr) {
    s.record.failed++;
    return nullptr;
  }
#ifndef QUO_FRESH_MEMORY_UNDEFINED
  std::memset(block, s.fresh_byte, size);
#endif
  s.live.push_back(block);
  s.record.live_blocks = s.live.size();
  return block;
}

void tev_quo_free(void* block) {
  if (block == nullptr) return;
  auto& s = state();
  if (std::erase(s.live, block) == 0) s.record.bad_frees++;
  s.record.live_blocks = s.live.size();
  std::free(block);
}

double tev_quo_atan2(double y, double x) {
  auto& s = state();
  s.record.arctangents++;
  return s.arctangent != nullptr ? s.arctangent(y, x) : std::atan2(y, x);
}

void tev_quo_log(const char* tag, uint32_t length) {
  state().record.events.push_back(std::string(tag) + "/" + std::to_string(length));
}
