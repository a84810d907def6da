#include "interrupt.h"

#include <csignal>

namespace quofp {
namespace {

volatile std::sig_atomic_t caught = 0;

}  // namespace

void catch_interrupts() {
  struct sigaction action = {};
  action.sa_handler = [](int) { caught = 1; };
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // and no SA_RESTART
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool interrupted() { return caught != 0; }

}  // namespace quofp
