// How far a long run has come, for someone who watches.
#pragma once

#include <cstddef>
#include <string>

namespace quofp {

/** A bar on standard error while it lives, if that is a terminal; nothing otherwise. */
class Progress {
 public:
  Progress(std::string label, size_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /** One more of `total` is done. */
  void step();

 private:
  void draw();

  std::string label_;
  size_t total_;
  size_t done_ = 0;
  size_t drawn_percent_ = 0;
  bool visible_;
};

}  // namespace quofp
