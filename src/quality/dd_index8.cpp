#include "quality/direction_bins.h"

uint32_t DDIndex8(int32_t orientation) { return quo::direction_bin(orientation); }
