// Any bytes with a size given as text: a frame of that size when there are as many, otherwise a failure that says why.
// Input: length of the text, the text, then the file.
#include "formats/pgm.h"
#include "formats/png.h"
#include "support/reader.h"

using namespace quo_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const size_t length = std::min<size_t>(input.byte() % 16, input.rest().size());
  const auto text = input.rest().first(length), bytes = input.rest().subspan(length);
  const auto raw_size = quofp::parse_size({text.begin(), text.end()});
  require(!raw_size || quofp::is_frame_size(raw_size->width, raw_size->height), "a size is within the bounds");
  const auto file = exact(bytes, bytes.size());
  const auto frame = frame_or_failure([&] {
    return quofp::decode_frame("input", {file.get(), bytes.size()}, raw_size);
  });
  if (frame) require_sound(*frame);
  if (!raw_size || quofp::is_png(bytes)) return 0;
  if (bytes.size() == static_cast<size_t>(raw_size->width) * static_cast<size_t>(raw_size->height)) {
    require(frame && frame->width == raw_size->width && Bytes(bytes.begin(), bytes.end()) == frame->pixels, "as it is");
  } else {
    require(!frame || quofp::is_pgm(bytes), "no other number of bytes is a raw frame");
  }
  return 0;
}
