// The platform hooks, alone in their translation unit so that no caller can have them inlined: a program that defines
// one of these names receives every call the library makes.
#include "frame/hooks.h"

#include <cmath>
#include <cstdlib>

#include "quoFPAlg.h"

void* tev_quo_malloc(uint32_t size) { return std::malloc(size); }

void tev_quo_free(void* block) { std::free(block); }

double tev_quo_atan2(double y, double x) { return std::atan2(y, x); }

void tev_quo_log(const char*, uint32_t) {}

// A second name of the definition above, which no program can take over.
extern "C" __attribute__((visibility("hidden"), alias("tev_quo_atan2"))) double quo_own_atan2(double y, double x);

bool quo::arctangent_is_own() {
  // Volatile, because a compiler may take two names for two functions.
  double (*const volatile called)(double, double) = tev_quo_atan2;
  return called == quo_own_atan2;
}
