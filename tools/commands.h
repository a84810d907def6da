// Every command of the tool, each defined in commands/<name>.cpp. Groups are kept apart by blank lines.
#pragma once

#include "command.h"

namespace quofp {

// The library itself
void add_selftest(Commands& commands);

// Frames
void add_batch(Commands& commands);
void add_diff(Commands& commands);
void add_guess(Commands& commands);
void add_info(Commands& commands);
void add_report(Commands& commands);
void add_sheet(Commands& commands);
void add_synth(Commands& commands);
void add_view(Commands& commands);
void add_watch(Commands& commands);

// Capture preprocessing
void add_preprocess(Commands& commands);

// Image quality and orientation
void add_orientation(Commands& commands);
void add_quality(Commands& commands);

// Sensor defect inspection
void add_defects(Commands& commands);

// Sp templates
void add_match(Commands& commands);
void add_show(Commands& commands);
void add_template(Commands& commands);

// Signal analysis
void add_bubbles(Commands& commands);
void add_snr(Commands& commands);

// Sensor calibration
void add_best(Commands& commands);
void add_gain(Commands& commands);

// Image operator toolbox
void add_op(Commands& commands);

}  // namespace quofp
