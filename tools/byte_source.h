// Bytes of a file or of standard input, from the first to the last.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quofp {

/** The name that stands for standard input on the command line. */
inline constexpr const char* kStandardInput = "-";

class ByteSource {
 public:
  /** Opens a file; "-" is standard input. @throws Failure */
  explicit ByteSource(const std::string& path);

  /** Length in bytes; nothing where that is not known beforehand, as of a pipe. */
  std::optional<int64_t> size() const { return size_; }

  /** The first bytes, eight at most, without taking them. To be asked for before anything is taken. */
  std::span<const uint8_t> head();

  /** Takes up to `count` bytes, fewer only at the end. @throws Failure when reading fails */
  size_t read(uint8_t* bytes, size_t count);

  /** Passes over bytes, to the end at most. */
  void skip(int64_t count);

  /** Takes the rest. @throws Failure when it is longer than `limit` bytes */
  std::vector<uint8_t> rest(size_t limit);

 private:
  struct Close {
    void operator()(std::FILE* file) const;
  };

  std::string path_;
  std::unique_ptr<std::FILE, Close> file_;
  std::optional<int64_t> size_;
  std::vector<uint8_t> head_;  // read already, not taken yet
};

}  // namespace quofp
