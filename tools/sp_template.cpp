#include "sp_template.h"

#include <algorithm>

#include "formats/pgm.h"
#include "formats/png.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

constexpr size_t kLargestPayload = 1020;

/** Reads a template from its start and says where and why when it cannot go on. */
class Parser {
 public:
  Parser(const std::string& name, const std::vector<uint8_t>& bytes) : name_(name), bytes_(bytes) {}

  TemplateLayout parse() {
    TemplateLayout layout;
    layout.version = byte("the header");
    layout.payload = room_ = u16("the header");
    if (layout.payload > kLargestPayload) {
      fail(1, "the payload length " + std::to_string(layout.payload) + " is above " + std::to_string(kLargestPayload) +
                  ", that of frames with width + height of 384");
    }
    while (room_ > 0) layout.profiles.push_back(profile("section " + std::to_string(layout.profiles.size() + 1)));
    const uint8_t trailer = byte("the trailer");
    if (layout.version != 0 && trailer != layout.version) {
      fail(at_ - 1, "the trailer " + std::to_string(trailer) + " is not the version " + std::to_string(layout.version));
    }
    if (at_ != bytes_.size()) fail(at_, std::to_string(bytes_.size() - at_) + " bytes follow the trailer");
    return layout;
  }

 private:
  Profile profile(const std::string& section) {
    if (room_ < 2) fail(at_, section + " does not fit in the payload length: 1 byte of it remains");
    Profile profile;
    profile.length = u16(section);
    room_ -= 2;
    if (std::max<size_t>(profile.length, 1) > room_) {
      fail(at_ - 2, section + " of " + std::to_string(profile.length) +
                        " positions does not fit in the payload length: " + std::to_string(room_) +
                        " bytes of it remain");
    }
    do {
      const Run run = this->run(section);
      profile.runs.push_back(run);
      profile.values.insert(profile.values.end(), run.count, run.value);
    } while (profile.values.size() < profile.length);
    return profile;
  }

  Run run(const std::string& section) {
    const uint8_t value = byte(section);
    const uint8_t count = byte(section);
    if (count == 0) fail(at_ - 1, "a run of " + section + " has a count of 0");
    if (count > room_) {
      fail(at_ - 1, "a run of " + section + " has a count of " + std::to_string(count) + ", but " +
                        std::to_string(room_) + " bytes of the payload length remain");
    }
    room_ -= count;
    return {value, count};
  }

  uint8_t byte(const std::string& part) {
    if (at_ == bytes_.size()) {
      throw file_failure(name_, "not an Sp template: " + std::to_string(at_) + " bytes, it ends within " + part);
    }
    return bytes_[at_++];
  }

  size_t u16(const std::string& part) {
    const size_t high = byte(part);
    return high << 8 | byte(part);
  }

  [[noreturn]] void fail(size_t offset, const std::string& reason) const {
    throw file_failure(name_, "not an Sp template: at byte " + std::to_string(offset) + ", " + reason);
  }

  const std::string& name_;
  const std::vector<uint8_t>& bytes_;
  size_t at_ = 0;
  size_t room_ = 0;  // bytes of the payload length not coded yet
};

bool is_frame(const std::vector<uint8_t>& bytes, const Reading& reading) {
  if (is_png(bytes) || is_pgm(bytes)) return true;
  return reading.reads_raw() && reading.raw.is_one_frame(static_cast<int64_t>(bytes.size()));
}

}  // namespace

std::optional<Size> TemplateLayout::frame_size() const {
  if (profiles.size() != 6) return std::nullopt;
  const auto length = [this](size_t i) { return static_cast<int32_t>(profiles[i].length); };
  for (const size_t i : {1U, 2U, 4U, 5U}) {
    if (length(i) != length(i / 3 * 3)) return std::nullopt;
  }
  return Size{length(0) + 2 * kProfileMargin, length(3) + 2 * kProfileMargin};
}

ProfileLine profile_line(size_t section, Size frame) {
  const bool is_row = section < 3;
  const int32_t across = is_row ? frame.height : frame.width;
  const int32_t positions[] = {kProfileMargin, across / 2, across - kProfileMargin};
  return {is_row, positions[section % 3]};
}

TemplateLayout parse_template(const std::string& name, const std::vector<uint8_t>& bytes) {
  return Parser(name, bytes).parse();
}

SpTemplate template_of(const Frame& frame) {
  uint8_t* bytes = nullptr;
  uint32_t size = 0;
  const uint32_t code = FP_ExtractSpTemplates(frame.data(), static_cast<uint32_t>(frame.width),
                                              static_cast<uint32_t>(frame.height), &bytes, &size);
  if (code != QUO_OK) {
    const bool small = std::min(frame.width, frame.height) <= 2 * kProfileMargin;
    throw refusal(frame.name, "FP_ExtractSpTemplates", code,
                  small ? "the frame must be wider and higher than 24 pixels" : "");
  }
  SpTemplate result{frame.name, {bytes, bytes + size}};
  FP_DeleteSpTemplates(&bytes);
  return result;
}

SpTemplate read_template(const std::string& file, const Reading& reading) {
  std::vector<uint8_t> bytes = read_file(file);
  if (is_frame(bytes, reading)) {
    const Frame frame = decode_file(file, std::move(bytes), reading);
    announce(frame);
    SpTemplate made = template_of(frame);
    if (frame.width + frame.height > kMatchableSides) {
      throw Failure(Exit::kRefused, file + ": width + height of " + std::to_string(frame.width) + "x" +
                                        std::to_string(frame.height) + " is above 384, its template cannot be matched");
    }
    return made;
  }
  parse_template(file, bytes);
  return {file, std::move(bytes)};
}

}  // namespace quofp
