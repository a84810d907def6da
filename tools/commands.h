// Every command of the tool, each defined in commands/<name>.cpp. Groups are kept apart by blank lines.
#pragma once

#include "command.h"

namespace quofp {

void add_synth(Commands& commands);

}  // namespace quofp
