#include "support/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace quo_test {
namespace {

constexpr uint8_t kPattern = 0x5C;

}  // namespace

Guarded::Guarded(size_t size, Guard guard, uint8_t value) : size_(size) {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  usable_size_ = (size + page) / page * page;
  mapped_ = usable_size_ + 2 * page;
  void* const mapping = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) std::abort();
  base_ = static_cast<uint8_t*>(mapping);
  usable_ = base_ + page;
  if (mprotect(usable_, usable_size_, PROT_READ | PROT_WRITE) != 0) std::abort();
  std::memset(usable_, kPattern, usable_size_);
  data_ = guard == Guard::kAfter ? usable_ + usable_size_ - size : usable_;
  std::memset(data_, value, size);
}

Guarded::Guarded(std::span<const uint8_t> content, Guard guard) : Guarded(content.size(), guard) {
  if (!content.empty()) std::memcpy(data_, content.data(), content.size());
}

Guarded::~Guarded() {
  for (uint8_t* byte = usable_; byte < usable_ + usable_size_; byte++) {
    if ((byte < data_ || byte >= data_ + size_) && *byte != kPattern) {
      std::fprintf(stderr, "a byte at offset %td of a buffer of %zu was written\n", byte - data_, size_);
      std::abort();
    }
  }
  munmap(base_, mapped_);
}

void Guarded::make_read_only() { mprotect(usable_, usable_size_, PROT_READ); }

}  // namespace quo_test
