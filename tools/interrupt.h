// Ctrl-C as a wish to end, for commands that have something to finish first.
#pragma once

namespace quofp {

/** From here on the first SIGINT or SIGTERM sets a mark and interrupts waiting system calls; the next one ends the tool
 *  at once. */
void catch_interrupts();

/** Whether such a signal came. */
bool interrupted();

}  // namespace quofp
