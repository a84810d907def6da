// How far a long run has come, for someone who watches.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace quofp {

/** A bar on standard error while it lives, if that is a terminal; nothing otherwise. After a while it shows the rate
 *  and the time left, too. */
class Progress {
 public:
  /** `total` is nothing where it is not known. */
  Progress(std::string label, std::optional<size_t> total, size_t done = 0);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /** One more is done. */
  void step();

  /** Makes room for a message; the bar comes back with a later step. */
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool due();
  void draw();

  std::string label_;
  std::optional<size_t> total_;
  size_t first_;  // done before this run
  size_t done_;
  size_t drawn_percent_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point drawn_ = start_;
  bool visible_;
};

}  // namespace quofp
