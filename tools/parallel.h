// Independent pieces of work on all cores.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace quofp {

/** Calls `work(i)` for every i below `count`, several at a time in any order. The first exception stops the rest and is
 *  thrown again. */
template <typename Work>
void in_parallel(size_t count, Work work) {
  std::atomic<size_t> next = 0;
  std::exception_ptr failure;
  std::mutex guard;
  const auto run = [&] {
    for (size_t i = next++; i < count; i = next++) {
      try {
        work(i);
      } catch (...) {
        const std::lock_guard lock(guard);
        if (!failure) failure = std::current_exception();
        next = count;
      }
    }
  };
  std::vector<std::jthread> helpers;
  const size_t threads = std::min<size_t>(count, std::max(1U, std::thread::hardware_concurrency()));
  for (size_t i = 1; i < threads; i++) helpers.emplace_back(run);
  run();
  helpers.clear();  // waits
  if (failure) std::rethrow_exception(failure);
}

}  // namespace quofp
