#include "progress.h"

#include <unistd.h>

#include <iostream>

namespace quofp {
namespace {

constexpr size_t kBarWidth = 40;  // characters
constexpr const char* kClearLine = "\r\x1B[K";

}  // namespace

Progress::Progress(std::string label, size_t total)
    : label_(std::move(label)), total_(total), visible_(total > 0 && isatty(STDERR_FILENO) == 1) {
  if (visible_) draw();
}

Progress::~Progress() {
  if (visible_) std::cerr << kClearLine << std::flush;
}

void Progress::step() {
  done_++;
  if (visible_ && 100 * done_ / total_ != drawn_percent_) draw();
}

void Progress::draw() {
  drawn_percent_ = 100 * done_ / total_;
  const size_t filled = kBarWidth * done_ / total_;
  std::cerr << '\r' << label_ << " [" << std::string(filled, '#') << std::string(kBarWidth - filled, '.') << "] "
            << drawn_percent_ << " %" << std::flush;
}

}  // namespace quofp
