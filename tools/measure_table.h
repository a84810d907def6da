// Commands that print one group of figures for each frame.
#pragma once

#include "inputs.h"
#include "measures.h"

namespace quofp {

/** Prints a row for each frame. @return the worst exit code that occurred */
Exit print_measure(const Inputs& inputs, const Measure& measure, Format format);

}  // namespace quofp
