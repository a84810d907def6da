// Buffers beside an unreadable page: a read or write one byte outside ends the test program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

namespace quo_test {

/** Which end of the buffer touches the unreadable page. */
enum class Guard { kAfter, kBefore };

/** `size` bytes whose end (or beginning) lies at an unreadable page. The rest of the buffer's own pages holds a pattern
 *  that the destructor compares: a write into it ends the test program too. */
class Guarded {
 public:
  Guarded(size_t size, Guard guard, uint8_t value = 0);
  explicit Guarded(std::span<const uint8_t> content, Guard guard);
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
  ~Guarded();

  /** From here on a write ends the test program. */
  void make_read_only();

  uint8_t* data() { return data_; }
  template <typename T>
  T* as() {
    return reinterpret_cast<T*>(data_);
  }
  std::span<uint8_t> bytes() { return {data_, size_}; }
  bool equals(std::span<const uint8_t> other) const {
    return other.size() == size_ && (size_ == 0 || std::memcmp(data_, other.data(), size_) == 0);
  }

 private:
  struct Mapping;
  std::unique_ptr<Mapping> mapping_;
  uint8_t* data_;
  size_t size_;
};

}  // namespace quo_test
