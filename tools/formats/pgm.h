// Portable graymaps, binary (P5) and text (P2).
#pragma once

#include <span>

#include "failure.h"
#include "formats/samples.h"
#include "frame_io.h"

namespace quofp {

bool is_pgm(std::span<const uint8_t> bytes);
Samples decode_pgm(const std::string& name, std::span<const uint8_t> bytes);
std::vector<uint8_t> encode_pgm(const Frame& frame);

}  // namespace quofp
