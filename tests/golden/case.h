// One call of one function with arguments from a generator, everything that the call may change folded into a digest.
//
// The same calls serve three tests: golden hashes (the same bytes on every machine), guard pages (the same bytes
// wherever the buffers lie, nothing outside them touched), and threads (the same bytes while others run).
//
// Compilers evaluate the arguments of a call in different orders: at most one argument of an expression may draw from
// the generator or make a buffer, the others are named before.
#pragma once

#include <climits>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

#include "support/frames.h"
#include "support/guarded.h"
#include "support/random.h"

namespace golden {

using quo_test::Image;

/** FNV-1a over everything that a caller can see of a call. */
class Digest {
 public:
  void add_bytes(const void* bytes, size_t count) {
    const auto* next = static_cast<const uint8_t*>(bytes);
    for (size_t i = 0; i < count; i++) hash_ = (hash_ ^ next[i]) * 0x100000001B3U;
  }

  /** Adds a number by value, whatever its width. Floating values count with every bit. */
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

/** Where a case's buffers lie: at the start of a page after an unreadable one, or up to the end of one before. */
using quo_test::Guard;

class Case {
 public:
  Case(uint64_t seed, int32_t w, int32_t h, Guard guard) : width(w), height(h), random_(seed), guard_(guard) {}

  /** Size of the frame to call with; may be 0 or negative. */
  const int32_t width;
  const int32_t height;

  quo_test::Random& random() { return random_; }

  /** One of the values. */
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[random_.next() % values.size()];
  }

  /** A value from low to high, and one time in eight one that no caller should pass. */
  int32_t argument(int32_t low, int32_t high) {
    if (random_.next() % 8 != 0) return random_.between(low, high);
    return pick({0, -1, 1, 255, 256, INT_MIN, INT_MAX, high + 1});
  }

  /** Content of the case's size, or of another; its kind is drawn from the generator. */
  Image content() { return content(width, height); }
  Image content(int32_t w, int32_t h) {
    return quo_test::generate(random_, w, h, quo_test::kAllFills[random_.next() % 6]);
  }

  /** A frame of the case's size that may not be written. */
  const uint8_t* frame() { return read_only(content()); }
  const uint8_t* read_only(const Image& image) {
    quo_test::Guarded& buffer = keep(image.pixels, false);
    buffer.make_read_only();
    return buffer.data();
  }

  /** A frame to be changed in place, or an array to be written. The whole of it is folded in after the call. */
  uint8_t* in_place(const Image& image) { return keep(image.pixels, true).data(); }
  template <typename T>
  T* array(size_t count, T initial) {
    const std::vector<T> values(count, initial);
    return keep({reinterpret_cast<const uint8_t*>(values.data()), count * sizeof(T)}, true).template as<T>();
  }
  uint8_t* image_output(int32_t w, int32_t h) { return in_place(Image(w, h, 0xEE)); }

  /** A single value to be written; with maybe() null one time in eight. */
  template <typename T>
  T* output(T initial = T{119}) {
    return array<T>(1, initial);
  }
  template <typename T>
  T* maybe(T* pointer) {
    return random_.next() % 8 == 0 ? nullptr : pointer;
  }

  /** Folds in a result. */
  template <typename T>
  void add(T value) {
    digest_.add(value);
  }
  /** Folds in `count` elements that the library handed out, or that there are none, and gives them back. */
  template <typename T>
  void take(T* block, size_t count) {
    digest_.add(block != nullptr);
    for (size_t i = 0; block != nullptr && i < count; i++) digest_.add(block[i]);
    give_back(block);
  }

  /** Folds in the buffers; the hash of everything. To be called once, after the call. */
  uint64_t finish();

  Digest& digest() { return digest_; }

 private:
  struct Kept {
    std::unique_ptr<quo_test::Guarded> buffer;
    bool changes;
  };
  quo_test::Guarded& keep(std::span<const uint8_t> bytes, bool changes);
  static void give_back(void* block);

  quo_test::Random random_;
  Guard guard_;
  Digest digest_;
  std::vector<Kept> kept_;
};

/** A function under its exported name, and one call of it. */
struct Function {
  const char* name;
  void (*call)(Case&);
  bool abi_sizes = false;  // allocates records whose size is the ABI's choice, so sizes are no part of the result
};

/** All functions, in the order of the export list. */
std::vector<Function> functions();

}  // namespace golden
