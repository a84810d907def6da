// Work spread over threads, its results delivered one by one in the order in which it was given.
#pragma once

#include <condition_variable>
#include <csignal>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace quofp {

/** Threads that turn jobs into results. */
template <typename Job, typename Result>
class OrderedWorkers {
 public:
  /** At most `limit` jobs are in memory at a time. `work` is called from all threads at once and throws nothing; `sink`
   *  receives each result as soon as all before it are delivered, from one thread at a time. */
  OrderedWorkers(size_t threads, size_t limit, std::function<Result(const Job&)> work,
                 std::function<void(const Result&)> sink)
      : limit_(limit), work_(std::move(work)), sink_(std::move(sink)) {
    // Signals are for the thread that waits for input.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    for (size_t i = 0; i < threads; i++) threads_.emplace_back([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }
  OrderedWorkers(const OrderedWorkers&) = delete;
  OrderedWorkers& operator=(const OrderedWorkers&) = delete;
  ~OrderedWorkers() {
    {
      const std::lock_guard lock(mutex_);
      ended_ = true;
    }
    given_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  /** Waits until there is room. Throws what the sink has thrown. */
  void give(Job job) {
    std::unique_lock lock(mutex_);
    delivered_.wait(lock, [this] { return tasks_.size() < limit_ || failure_; });
    if (failure_) std::rethrow_exception(failure_);
    tasks_.push_back({std::move(job), std::nullopt});
    given_.notify_one();
  }

  /** Waits until everything is delivered. Throws what the sink has thrown. */
  void finish() {
    std::unique_lock lock(mutex_);
    delivered_.wait(lock, [this] { return (tasks_.empty() && !delivering_) || failure_; });
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  struct Task {
    Job job;
    std::optional<Result> result;
  };

  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      given_.wait(lock, [this] { return ended_ || started_ < tasks_.size(); });
      if (ended_) return;
      Task& task = tasks_[started_++];  // a deque moves no element when one joins or leaves at an end
      lock.unlock();
      Result result = work_(task.job);
      lock.lock();
      task.result = std::move(result);
      if (!delivering_) deliver(lock);
    }
  }

  // Hands over the results at the front. Others that become ready meanwhile are handed over by this thread, too.
  void deliver(std::unique_lock<std::mutex>& lock) {
    delivering_ = true;
    while (!tasks_.empty() && tasks_.front().result && !failure_) {
      const Result result = std::move(*tasks_.front().result);
      tasks_.pop_front();
      started_--;
      lock.unlock();
      std::exception_ptr failure;
      try {
        sink_(result);
      } catch (...) {
        failure = std::current_exception();
      }
      lock.lock();
      failure_ = failure;
      delivered_.notify_all();
    }
    delivering_ = false;
    delivered_.notify_all();
  }

  const size_t limit_;
  const std::function<Result(const Job&)> work_;
  const std::function<void(const Result&)> sink_;
  std::mutex mutex_;
  std::condition_variable given_, delivered_;
  std::deque<Task> tasks_;
  size_t started_ = 0;  // of the tasks in the queue
  bool delivering_ = false;
  bool ended_ = false;
  std::exception_ptr failure_;
  std::vector<std::thread> threads_;
};

}  // namespace quofp
