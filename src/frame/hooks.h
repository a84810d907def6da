// What the library knows about the hooks beside their interface.
#pragma once

namespace quo {

/** Whether calls of tev_quo_atan2 reach the library's own definition, not one of the program. */
bool arctangent_is_own();

}  // namespace quo
