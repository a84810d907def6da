#include "frame_reader.h"

#include <glob.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

#include "failure.h"
#include "formats/pgm.h"
#include "formats/png.h"
#include "natural_order.h"

namespace quofp {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLongestFile = size_t{1} << 28;  // bytes, of PNG and PGM

std::vector<std::string> matches_of(const std::string& pattern) {
  glob_t found = {};
  std::vector<std::string> paths;
  if (glob(pattern.c_str(), 0, nullptr, &found) == 0) paths.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  globfree(&found);
  std::sort(paths.begin(), paths.end(), in_natural_order);
  return paths;
}

void add_folder(const std::string& folder, bool raw, std::vector<InputFile>& files) {
  const size_t before = files.size();
  try {
    for (const std::string& file : list_files(folder)) {
      if (is_frame_name(file, raw)) files.push_back({file});
    }
    if (files.size() > before) return;
    files.push_back({folder, {}, std::string("the folder holds no .png or .pgm") + (raw ? ", .raw or .bin" : "")});
  } catch (const Failure& failure) {
    files.push_back({folder, {}, failure.reason()});
  }
}

// FILE#N, when FILE is there.
std::optional<InputFile> numbered(const std::string& argument) {
  const size_t mark = argument.rfind('#');
  if (mark == std::string::npos || mark + 1 == argument.size() || argument.size() - mark > 12) return std::nullopt;
  if (argument.find_first_not_of("0123456789", mark + 1) != std::string::npos) return std::nullopt;
  std::error_code ignored;
  const std::string path = argument.substr(0, mark);
  if (!fs::exists(path, ignored)) return std::nullopt;
  return InputFile{path, std::stoll(argument.substr(mark + 1))};
}

}  // namespace

bool is_frame_name(const std::string& path, bool raw) {
  std::string ending = fs::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) { return std::tolower(c); });
  return ending == ".png" || ending == ".pgm" || (raw && (ending == ".raw" || ending == ".bin"));
}

std::vector<std::string> list_files(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> files;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored)) files.push_back(entry->path().string());
  }
  if (error) throw file_failure(folder, "cannot be listed: " + error.message());
  std::sort(files.begin(), files.end(), in_natural_order);
  return files;
}

std::vector<InputFile> expand(const std::vector<std::string>& arguments, bool raw) {
  std::vector<InputFile> files;
  for (const std::string& argument : arguments) {
    std::error_code ignored;
    if (argument == kStandardInput || fs::is_regular_file(argument, ignored)) {
      files.push_back({argument});
    } else if (fs::is_directory(argument, ignored)) {
      add_folder(argument, raw, files);
    } else if (const auto frame = raw ? numbered(argument) : std::nullopt) {
      files.push_back(*frame);
    } else if (!fs::exists(argument, ignored) && argument.find_first_of("*?[") != std::string::npos) {
      const std::vector<std::string> found = matches_of(argument);
      for (const std::string& path : found) {
        if (!fs::is_directory(path, ignored)) files.push_back({path});
      }
      if (found.empty()) files.push_back({argument, {}, "no file matches"});
    } else {
      files.push_back({argument});
    }
  }
  return files;
}

FrameReader::FrameReader(const std::vector<std::string>& arguments, const Reading& reading)
    : reading_(reading), files_(expand(arguments, reading.reads_raw())) {
  check(reading);
}

std::optional<Encoded> FrameReader::next() { return advance(true); }

bool FrameReader::skip() {
  try {
    return advance(false).has_value();
  } catch (const Failure&) {
    return true;
  }
}

std::optional<Encoded> FrameReader::advance(bool wanted) {
  for (;;) {
    if (raw_) {
      if (auto frame = next_raw(wanted)) return frame;
    }
    if (at_ == files_.size()) return std::nullopt;
    if (auto frame = open(files_[at_++], wanted)) return frame;
  }
}

// The frame that the file is; nothing when it is raw, and frames are to be taken from it.
std::optional<Encoded> FrameReader::open(const InputFile& file, bool wanted) {
  if (!file.problem.empty()) throw file_failure(file.path, file.problem);
  if (!wanted && !reading_.reads_raw()) return Encoded{file.path, {}};
  RawFile opened{file.path, ByteSource(file.path)};
  const std::optional<int64_t> size = opened.source.size();
  const RawLayout& layout = reading_.raw;
  const auto fills = [&] {  // exactly: bytes that are just frames are raw, whatever they begin with
    if (!size || *size <= layout.offset) return false;
    if (!layout.count) return layout.is_one_frame(*size);
    const int64_t held = *size - layout.offset, pitch = layout.frame_pitch();
    return *layout.count == 0 ? held % pitch == 0 : held == *layout.count * pitch;
  };
  const std::span<const uint8_t> head = opened.source.head();
  if (!reading_.reads_raw() || is_png(head) || (is_pgm(head) && !fills())) {
    return Encoded{file.path, opened.source.rest(kLongestFile)};
  }
  opened.source.skip(layout.offset);
  if (!file.index) {
    check_length(opened);
    raw_ = std::move(opened);
    return std::nullopt;
  }
  opened.source.skip(*file.index * layout.frame_pitch());
  opened.index = *file.index;
  std::optional<Encoded> frame = take(opened, file.path + "#" + std::to_string(*file.index), wanted);
  if (!frame) throw file_failure(file.path, "there is no frame " + std::to_string(*file.index));
  return frame;
}

// A file that should be one frame, and is not, shows it by its length.
void FrameReader::check_length(const RawFile& raw) const {
  const RawLayout& layout = reading_.raw;
  const std::optional<int64_t> size = raw.source.size();
  if (!size || layout.count || layout.is_one_frame(*size)) return;
  if (*size == 0) throw file_failure(raw.path, "the file is empty");
  const int64_t held = *size - layout.offset;
  std::string reason = std::to_string(*size) + " bytes, but a raw frame of " + std::to_string(layout.size.width) + "x" +
                       std::to_string(layout.size.height) + " has " + std::to_string(layout.frame_bytes());
  if (layout.offset > 0) reason += " after an offset of " + std::to_string(layout.offset);
  if (held > 0 && held % layout.frame_pitch() == 0) {
    reason += "; --count 0 reads " + std::to_string(held / layout.frame_pitch()) + " frames";
  }
  throw file_failure(raw.path, reason);
}

// The next frame of a raw file; nothing when all of it are taken.
std::optional<Encoded> FrameReader::next_raw(bool wanted) {
  const RawLayout& layout = reading_.raw;
  RawFile raw = *std::exchange(raw_, std::nullopt);  // a failure leaves the file
  if (layout.count != 0 && raw.index >= layout.count.value_or(1)) {
    check_end(raw);
    return std::nullopt;
  }
  const std::string name = layout.count ? raw.path + "#" + std::to_string(raw.index) : raw.path;
  std::optional<Encoded> frame = take(raw, name, wanted);
  if (!frame) return std::nullopt;
  frame->first = raw.index++ == 0;
  raw.source.skip(layout.frame_pitch() - layout.frame_bytes());
  raw_ = std::move(raw);
  return frame;
}

// The frame where the file stands; nothing at the end of a file of which all frames are asked for.
std::optional<Encoded> FrameReader::take(RawFile& raw, const std::string& name, bool wanted) const {
  const RawLayout& layout = reading_.raw;
  const int64_t start = layout.offset + raw.index * layout.frame_pitch();
  const std::optional<int64_t> size = raw.source.size();
  Encoded frame{name, {}, true};
  if (!wanted && size && start + layout.frame_bytes() <= *size) {
    raw.source.skip(layout.frame_bytes());
    return frame;
  }
  const auto needed = static_cast<size_t>(layout.frame_bytes());
  frame.bytes.resize(needed);
  const size_t got = raw.source.read(frame.bytes.data(), needed);
  if (got == needed) return frame;
  if (got == 0 && layout.count == 0 && raw.index > 0) return std::nullopt;
  throw file_failure(name, "the file ends at byte " + std::to_string(size.value_or(start + static_cast<int64_t>(got))) +
                               ", but the frame has " + std::to_string(needed) + " bytes from byte " +
                               std::to_string(start) + " on");
}

// Tells of bytes that follow the frames asked for; a file that should be one frame must have none.
void FrameReader::check_end(RawFile& raw) const {
  uint8_t byte;
  if (raw.source.read(&byte, 1) == 0) return;
  if (!reading_.raw.count) throw file_failure(raw.path, "more than one frame of bytes; --count N reads several");
  note(raw.path, "more bytes follow the " + std::to_string(*reading_.raw.count) + " frames asked for");
}

std::optional<int64_t> FrameReader::total() const {
  int64_t sum = 0;
  const RawLayout& layout = reading_.raw;
  for (const InputFile& file : files_) {
    std::error_code error;
    const bool raw = reading_.reads_raw() && layout.count && !file.index && file.problem.empty();
    if (!raw) {
      sum++;
    } else if (*layout.count > 0) {
      sum += *layout.count;
    } else {
      const auto size = static_cast<int64_t>(fs::file_size(file.path, error));
      if (error) return std::nullopt;
      sum += std::max<int64_t>(1, (size - layout.offset + layout.frame_pitch() - 1) / layout.frame_pitch());
    }
  }
  return sum;
}

Frame read_frame(const std::string& path, const Reading& reading) {
  std::optional<Encoded> encoded = FrameReader({path}, reading).next();
  if (!encoded) throw file_failure(path, "holds no frame");
  Frame frame = decode(*encoded, reading);
  announce(frame);
  return frame;
}

}  // namespace quofp
