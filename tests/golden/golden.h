// Golden hashes: every function over many generated cases, folded into one hash a group. The same hashes on every
// processor, compiler and optimisation level prove the same bytes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "support/frames.h"
#include "support/random.h"

namespace golden {

using quo_test::Image;
using quo_test::Random;

/** FNV-1a over everything that a caller can see of a call. */
class Digest {
 public:
  void add_bytes(const void* bytes, size_t count) {
    const auto* next = static_cast<const uint8_t*>(bytes);
    for (size_t i = 0; i < count; i++) hash_ = (hash_ ^ next[i]) * 0x100000001B3U;
  }

  /** Adds a number or an enumerator by value, whatever its width. Floating values count with every bit. */
  template <typename T>
  void add(T value) {
    static_assert(std::is_arithmetic_v<T>);
    if constexpr (std::is_floating_point_v<T>) {
      add_bytes(&value, sizeof value);
    } else {
      const auto wide = static_cast<uint64_t>(static_cast<int64_t>(value));
      add_bytes(&wide, sizeof wide);
    }
  }

  uint64_t value() const { return hash_; }

 private:
  uint64_t hash_ = 0xCBF29CE484222325U;
};

/** One call to make: its size, its content and a generator for the other arguments, all the same on every machine. */
class Case {
 public:
  Case(uint64_t seed, int32_t w, int32_t h, Digest& digest) : random(seed), width(w), height(h), digest_(digest) {}

  Random random;
  const int32_t width;
  const int32_t height;

  /** A frame of the case's size, or of another; the kind of content is drawn from the generator. */
  Image frame() { return frame(width, height); }
  Image frame(int32_t w, int32_t h) { return quo_test::generate(random, w, h, quo_test::kAllFills[random.next() % 6]); }

  /** One of the values, drawn from the generator. */
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[random.next() % values.size()];
  }

  /** Null one time in eight: for outputs that may be left out. */
  template <typename T>
  T* maybe(T* output) {
    return random.next() % 8 == 0 ? nullptr : output;
  }

  template <typename T>
  void add(T value) {
    digest_.add(value);
  }
  void add(const Image& image) { digest_.add_bytes(image.pixels.data(), image.pixels.size()); }
  template <typename T>
  void add(const std::vector<T>& values) {
    for (const T value : values) digest_.add(value);
  }
  /** `count` elements that the library handed out (null is folded in as such); gives them back. */
  template <typename T>
  void add_and_free(T* block, size_t count) {
    digest_.add(block != nullptr);
    if (block == nullptr) return;
    for (size_t i = 0; i < count; i++) digest_.add(block[i]);
    give_back(block);
  }

 private:
  static void give_back(void* block);
  Digest& digest_;
};

/** A function under its exported name, and one call of it with everything it may change folded into the case. */
struct Function {
  const char* name;
  void (*call)(Case&);
};

/** All functions, in the order of the export list. */
std::vector<Function> functions();

/** A named hash, for example FP_ImagePreproc/sensor. */
struct Hash {
  std::string name;
  uint64_t value;
};

/** Runs every case of a function. */
std::vector<Hash> run(const Function& function);

/** Compares all functions with a file of golden hashes, or writes the file anew; reports to `out`.
 *  @return 0 when all are equal, 1 when some differ or are missing, 3 when the file cannot be read or written */
int compare(const std::string& path, std::FILE* out);
int write(const std::string& path, std::FILE* out);

// The subsystems' lists.
extern const std::vector<Function> kFrameFunctions;

}  // namespace golden
