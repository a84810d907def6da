// Any bytes behind the magic number of a graymap: a frame or a failure that says why. What is read is read again from
// the file that the tool would write. Input: P2 or P5, then the rest of the file.
#include "formats/pgm.h"
#include "support/reader.h"

using namespace quo_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Bytes bytes = {'P', static_cast<uint8_t>(input.byte() % 2 == 0 ? '2' : '5'), '\n'};
  bytes.insert(bytes.end(), input.rest().begin(), input.rest().end());
  const auto frame = frame_or_failure([&] { return quofp::decode_file("input", bytes, {}); });
  if (!frame) return 0;
  require_sound(*frame);
  require(same(quofp::decode_file("input", quofp::encode_pgm(*frame), {}), *frame), "what is written is read again");
  return 0;
}
