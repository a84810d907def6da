// Scratch memory over the platform hooks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "quoFPAlg.h"

namespace quo {

/** Number of pixels of a width x height image; a size of zero or below is an empty image. */
inline uint64_t pixel_count(int32_t width, int32_t height) {
  if (width <= 0 || height <= 0) return 0;
  return static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
}

/** An array taken through tev_quo_malloc and given back through tev_quo_free when it goes out of scope. */
template <typename T>
class Scratch {
 public:
  Scratch() = default;
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { reset(); }

  /** Takes memory for `count` elements, uninitialised. False when the hook has none or when the byte count does not
   *  fit in 32 bits; the hook is not asked then. An array held before is given back first. */
  [[nodiscard]] bool allocate(uint64_t count) {
    reset();
    if (count > UINT32_MAX / sizeof(T)) return false;
    data_ = static_cast<T*>(tev_quo_malloc(static_cast<uint32_t>(count * sizeof(T))));
    return data_ != nullptr;
  }

  /** Takes over an array that a function of the library handed out; null for none. */
  void adopt(T* data) {
    reset();
    data_ = data;
  }

  /** Gives the array back early, where the order of the calls matters. */
  void reset() {
    if (data_ != nullptr) tev_quo_free(data_);
    data_ = nullptr;
  }

  /** Hands the array over to the caller, who frees it. */
  [[nodiscard]] T* release() {
    T* const data = data_;
    data_ = nullptr;
    return data;
  }

  T* get() const { return data_; }
  T& operator[](size_t index) const { return data_[index]; }
  explicit operator bool() const { return data_ != nullptr; }

 private:
  T* data_ = nullptr;
};

}  // namespace quo
