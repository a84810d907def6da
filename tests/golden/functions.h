// The calls, subsystem by subsystem.
#pragma once

#include <vector>

#include "golden/case.h"

namespace golden {

extern const std::vector<Function> kFrameFunctions;
extern const std::vector<Function> kPreprocFunctions;

}  // namespace golden
