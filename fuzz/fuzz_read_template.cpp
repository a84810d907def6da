// Any bytes as a template file: what the tool takes apart, the library decodes into the same profiles, and what it
// refuses the library refuses too, unless bytes follow the template.
#include "reference/sptemplate.h"
#include "sp_template.h"
#include "support/reader.h"

using namespace quo_fuzz;

namespace {

std::optional<quofp::TemplateLayout> layout_of(const Bytes& bytes) {
  std::optional<quofp::TemplateLayout> layout;
  frame_or_failure([&] {
    layout = quofp::parse_template("input", bytes);
    return quofp::Frame();
  });
  return layout;
}

// The profile record with these profiles.
Bytes record_of(const quofp::TemplateLayout& layout) {
  const auto high = [](size_t value) { return static_cast<uint8_t>(value >> 8); };
  const auto low = [](size_t value) { return static_cast<uint8_t>(value); };
  Bytes record = {layout.version, high(layout.payload), low(layout.payload)};
  for (const quofp::Profile& profile : layout.profiles) {
    record.push_back(high(profile.length));
    record.push_back(low(profile.length));
    record.insert(record.end(), profile.values.begin(), profile.values.end());
  }
  return record;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes bytes(data, data + size);
  const auto layout = layout_of(bytes);
  const reference::Decoded decoded = reference::decoded(bytes);
  const size_t unread = decoded.read > 0 && bytes.size() > 0 && bytes[0] == 0 ? 1 : 0;  // the trailer of version 0
  const bool whole = decoded.accepted && decoded.read + unread == bytes.size();
  require(layout.has_value() == whole, "the tool reads exactly the templates that the library decodes");
  if (!layout) return 0;
  require(record_of(*layout) == decoded.record, "the profiles are those of the record");
  if (const auto frame = layout->frame_size()) {
    require(frame->width + frame->height <= quofp::kMatchableSides, "no frame is too large to be matched");
  }
  return 0;
}
