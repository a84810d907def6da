// Any bytes with a layout of raw frames: a frame of that size when there are as many, otherwise a failure that says
// why. Input: length of the size as text (4 bits), bits of a pixel (2), order of its bytes (1), header (1); the text;
// the file.
#include "formats/pgm.h"
#include "formats/png.h"
#include "support/reader.h"

using namespace quo_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const uint8_t first = input.byte();
  const size_t length = std::min<size_t>(first % 16, input.rest().size());
  const auto text = input.rest().first(length), bytes = input.rest().subspan(length);
  const auto raw_size = quofp::parse_size({text.begin(), text.end()});
  require(!raw_size || quofp::is_frame_size(raw_size->width, raw_size->height), "a size is within the bounds");
  quofp::Reading reading;
  if (raw_size) {
    constexpr int32_t kBits[] = {8, 10, 12, 16};
    reading.raw.size = *raw_size;
    reading.raw.offset = first >> 7;
    reading.raw.bits = kBits[first >> 4 & 3];
    reading.raw.big_endian = (first >> 6 & 1) != 0;
  }
  const auto frame = frame_or_failure([&] {
    return quofp::decode_file("input", {bytes.begin(), bytes.end()}, reading);
  });
  if (frame) require_sound(*frame);
  if (!raw_size || quofp::is_png(bytes)) return 0;
  const int64_t expected = reading.raw.offset + reading.raw.frame_bytes();
  if (static_cast<int64_t>(bytes.size()) != expected) {
    require(!frame || quofp::is_pgm(bytes), "no other number of bytes is a raw frame");
  } else if (reading.raw.bits == 8) {
    const auto pixels = bytes.subspan(static_cast<size_t>(reading.raw.offset));
    require(frame && frame->width == raw_size->width && Bytes(pixels.begin(), pixels.end()) == frame->pixels,
            "as it is");
  }
  return 0;
}
