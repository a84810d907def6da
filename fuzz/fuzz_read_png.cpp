// Any bytes behind the signature of a PNG file: a frame or a failure that says why. What is read is read again from the
// file that the tool would write.
#include "formats/png.h"
#include "support/reader.h"

using namespace quo_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  bytes.insert(bytes.end(), data, data + size);
  const auto file = exact(bytes, bytes.size());
  const auto frame = frame_or_failure([&] { return quofp::decode_frame("input", {file.get(), bytes.size()}); });
  if (!frame) return 0;
  require_sound(*frame);
  if (frame->pixels.size() > 4096) return 0;
  require(same(quofp::decode_png("input", quofp::encode_png(*frame)), *frame), "what is written is read again");
  return 0;
}
