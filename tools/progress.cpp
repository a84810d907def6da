#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace quofp {
namespace {

constexpr size_t kBarWidth = 40;  // characters
constexpr const char* kClearLine = "\r\x1B[K";
constexpr auto kPause = std::chrono::milliseconds(200);  // between two drawings
constexpr double kSettled = 2;                           // seconds after which the rate says something

std::string time_text(double seconds) {
  const auto whole = static_cast<long>(seconds + 0.5);
  char text[48];
  if (whole >= 3600) {
    std::snprintf(text, sizeof text, "%ld h %02ld min", whole / 3600, whole / 60 % 60);
  } else if (whole >= 60) {
    std::snprintf(text, sizeof text, "%ld min %02ld s", whole / 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld s", whole);
  }
  return text;
}

}  // namespace

Progress::Progress(std::string label, std::optional<size_t> total, size_t done)
    : label_(std::move(label)), total_(total), first_(done), done_(done), visible_(isatty(STDERR_FILENO) == 1) {
  if (total_ == size_t{0}) visible_ = false;
  if (visible_) draw();
}

Progress::~Progress() { clear(); }

void Progress::clear() {
  if (visible_) std::cerr << kClearLine << std::flush;
}

void Progress::step() {
  done_++;
  if (visible_ && due()) draw();
}

// Percents as they come, up to the last one; the rest not more often than an eye can follow.
bool Progress::due() {
  if (total_ && 100 * done_ / *total_ != drawn_percent_) return true;
  return Clock::now() - drawn_ >= kPause;
}

void Progress::draw() {
  drawn_ = Clock::now();
  std::ostringstream line;
  line << '\r' << label_ << ' ';
  if (total_) {
    drawn_percent_ = 100 * done_ / *total_;
    const size_t filled = std::min(kBarWidth, kBarWidth * done_ / *total_);
    line << '[' << std::string(filled, '#') << std::string(kBarWidth - filled, '.') << "] " << drawn_percent_ << " %";
  } else {
    line << done_;
  }
  const double seconds = std::chrono::duration<double>(drawn_ - start_).count();
  if (seconds >= kSettled && done_ > first_) {
    const double rate = static_cast<double>(done_ - first_) / seconds;
    line << std::fixed << std::setprecision(rate < 10 ? 1 : 0) << "  " << rate << "/s";
    if (total_ && done_ < *total_) line << "  " << time_text(static_cast<double>(*total_ - done_) / rate) << " left";
    line << "\x1B[K";
  }
  std::cerr << line.str() << std::flush;
}

}  // namespace quofp
