// Any bytes behind the signature of a PNG file: a frame or a failure that says why. What is read is read again from the
// file that the tool would write.
// Input: whether checksums are made right, so that chunks get past them, then the file's bytes after the signature.
#include <zlib.h>

#include "formats/png.h"
#include "support/reader.h"

using namespace quo_fuzz;

namespace {

constexpr size_t kSignature = 8, kLengthAndType = 8, kChecksum = 4;

void correct_checksums(Bytes& file) {
  for (size_t at = kSignature; file.size() - at >= kLengthAndType + kChecksum;) {
    const size_t length =
        size_t{file[at]} << 24 | size_t{file[at + 1]} << 16 | size_t{file[at + 2]} << 8 | file[at + 3];
    if (length > file.size() - at - kLengthAndType - kChecksum) return;
    const uint8_t* const type = &file[at + 4];
    const auto sum = static_cast<uint32_t>(crc32(0, type, static_cast<uInt>(length + 4)));
    at += kLengthAndType + length;
    for (int shift = 24; shift >= 0; shift -= 8) file[at++] = static_cast<uint8_t>(sum >> shift);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const bool correct = input.byte() % 2 == 0;
  Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  bytes.insert(bytes.end(), input.rest().begin(), input.rest().end());
  if (correct) correct_checksums(bytes);
  const auto frame = frame_or_failure([&] { return quofp::decode_file("input", bytes, {}); });
  if (!frame) return 0;
  require_sound(*frame);
  if (frame->pixels.size() > 4096) return 0;
  require(same(quofp::decode_file("input", quofp::encode_png(*frame), {}), *frame), "what is written is read again");
  return 0;
}
