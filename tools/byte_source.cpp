#include "byte_source.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "failure.h"

namespace quofp {

void ByteSource::Close::operator()(std::FILE* file) const {
  if (file != stdin) std::fclose(file);
}

ByteSource::ByteSource(const std::string& path)
    : path_(path), file_(path == kStandardInput ? stdin : std::fopen(path.c_str(), "rb")) {
  if (!file_) throw file_failure(path, "cannot be opened: " + std::string(std::strerror(errno)));
  struct stat status = {};
  if (file_.get() != stdin && fstat(fileno(file_.get()), &status) == 0 && S_ISREG(status.st_mode)) {
    size_ = status.st_size;
  }
}

std::span<const uint8_t> ByteSource::head() {
  if (head_.empty()) {
    std::vector<uint8_t> bytes(8);
    bytes.resize(read(bytes.data(), bytes.size()));
    head_ = std::move(bytes);
  }
  return head_;
}

size_t ByteSource::read(uint8_t* bytes, size_t count) {
  const size_t kept = std::min(count, head_.size());
  std::copy_n(head_.begin(), kept, bytes);
  head_.erase(head_.begin(), head_.begin() + static_cast<ptrdiff_t>(kept));
  const size_t got = kept + std::fread(bytes + kept, 1, count - kept, file_.get());
  if (std::ferror(file_.get()) != 0) {
    throw file_failure(path_, "cannot be read: " + std::string(std::strerror(errno)));
  }
  return got;
}

void ByteSource::skip(int64_t count) {
  const auto kept = std::min(count, static_cast<int64_t>(head_.size()));
  head_.erase(head_.begin(), head_.begin() + kept);
  count -= kept;
  if (size_ && fseeko(file_.get(), count, SEEK_CUR) == 0) return;
  std::vector<uint8_t> passed(size_t{1} << 16);
  while (count > 0) {
    const size_t got = read(passed.data(), std::min<size_t>(passed.size(), static_cast<size_t>(count)));
    if (got == 0) return;
    count -= static_cast<int64_t>(got);
  }
}

std::vector<uint8_t> ByteSource::rest(size_t limit) {
  std::vector<uint8_t> bytes;
  for (size_t got = 1; got != 0;) {
    const size_t used = bytes.size();
    if (used > limit) throw file_failure(path_, "longer than " + std::to_string(limit) + " bytes");
    bytes.resize(used + (size_t{1} << 16));
    got = read(bytes.data() + used, bytes.size() - used);
    bytes.resize(used + got);
  }
  return bytes;
}

}  // namespace quofp
