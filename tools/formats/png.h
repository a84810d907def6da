// Portable network graphics through libpng.
#pragma once

#include <span>

#include "failure.h"
#include "formats/samples.h"
#include "frame_io.h"

namespace quofp {

bool is_png(std::span<const uint8_t> bytes);
Samples decode_png(const std::string& name, std::span<const uint8_t> bytes);
std::vector<uint8_t> encode_png(const Frame& frame);

}  // namespace quofp
