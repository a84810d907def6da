#include "support/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace quo_test {
namespace {

constexpr uint8_t kPattern = 0x5C;

size_t page_size() {
  static const size_t size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

// Pages between two unreadable ones. Mappings are kept for the next buffer of their size: the address space is locked
// while one is made, which would make threads wait for each other most of the time.
class Pages {
 public:
  explicit Pages(size_t size) : size_(size) {
    void* const mapping = mmap(nullptr, size + 2 * page_size(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) std::abort();
    first_ = static_cast<uint8_t*>(mapping) + page_size();
    protect(PROT_READ | PROT_WRITE);
  }

  uint8_t* first() const { return first_; }
  size_t size() const { return size_; }
  void protect(int protection) const {
    if (mprotect(first_, size_, protection) != 0) std::abort();
  }
  void unmap() const { munmap(first_ - page_size(), size_ + 2 * page_size()); }

 private:
  uint8_t* first_;
  size_t size_;
};

struct Pool {
  std::vector<Pages> pages;
  ~Pool() {
    for (const Pages& kept : pages) kept.unmap();
  }
};
thread_local Pool pool;

Pages take_pages(size_t size) {
  const auto kept =
      std::find_if(pool.pages.begin(), pool.pages.end(), [&](const Pages& p) { return p.size() == size; });
  if (kept == pool.pages.end()) return Pages(size);
  const Pages found = *kept;
  pool.pages.erase(kept);
  return found;
}

}  // namespace

struct Guarded::Mapping {
  Pages pages;
  bool read_only = false;
};

Guarded::Guarded(size_t size, Guard guard, uint8_t value)
    : mapping_(new Mapping{take_pages((size + page_size()) / page_size() * page_size())}), size_(size) {
  uint8_t* const first = mapping_->pages.first();
  std::memset(first, kPattern, mapping_->pages.size());
  data_ = guard == Guard::kAfter ? first + mapping_->pages.size() - size : first;
  std::memset(data_, value, size);
}

Guarded::Guarded(std::span<const uint8_t> content, Guard guard) : Guarded(content.size(), guard) {
  if (!content.empty()) std::memcpy(data_, content.data(), content.size());
}

Guarded::~Guarded() {
  const Pages& pages = mapping_->pages;
  for (uint8_t* byte = pages.first(); byte < pages.first() + pages.size(); byte++) {
    if ((byte < data_ || byte >= data_ + size_) && *byte != kPattern) {
      std::fprintf(stderr, "a byte at offset %td of a buffer of %zu was written\n", byte - data_, size_);
      std::abort();
    }
  }
  if (mapping_->read_only) pages.protect(PROT_READ | PROT_WRITE);
  pool.pages.push_back(pages);
}

void Guarded::make_read_only() {
  mapping_->pages.protect(PROT_READ);
  mapping_->read_only = true;
}

}  // namespace quo_test
