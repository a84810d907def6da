// Memory that the library hands out.
#pragma once

#include <memory>

#include "quoFPAlg.h"

namespace quofp {

struct GiveBack {
  void operator()(void* block) const { tev_quo_free(block); }
};

/** An array from the library, given back when it goes out of scope. */
template <typename T>
using Owned = std::unique_ptr<T[], GiveBack>;

}  // namespace quofp
