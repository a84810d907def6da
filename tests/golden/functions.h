// The calls, subsystem by subsystem.
#pragma once

#include <vector>

#include "golden/case.h"

namespace golden {

extern const std::vector<Function> kFrameFunctions;
extern const std::vector<Function> kPreprocFunctions;
extern const std::vector<Function> kQualityFunctions;
extern const std::vector<Function> kDefectFunctions;
extern const std::vector<Function> kSpTemplateFunctions;
extern const std::vector<Function> kSignalFunctions;
extern const std::vector<Function> kCalibrationFunctions;
extern const std::vector<Function> kToolboxFunctions;

}  // namespace golden
