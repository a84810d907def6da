// What can go wrong in the tool, what it says on standard error, and what its exit code tells.
#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quofp {

/** Exit codes of the tool; of a batch, the highest one that occurred. */
enum class Exit : int {
  kDone = 0,
  kRefused = 1,  // the library refused a frame, or a check that was asked for failed
  kUsage = 2,
  kInputOutput = 3,
  kInterrupted = 130,  // by SIGINT, as shells report it
};

inline Exit worse(Exit a, Exit b) { return std::max(a, b); }

/** A failure with the line that the user reads and the exit code that scripts read. */
class Failure : public std::runtime_error {
 public:
  Failure(Exit exit, const std::string& message) : std::runtime_error(message), exit_(exit) {}
  /** With what it is about in front, a file as a rule. */
  Failure(Exit exit, const std::string& subject, const std::string& reason)
      : std::runtime_error(subject + ": " + reason), exit_(exit), subject_(subject) {}

  Exit exit() const { return exit_; }
  const std::string& subject() const { return subject_; }
  /** The message without the subject. */
  std::string reason() const { return what() + (subject_.empty() ? 0 : subject_.size() + 2); }

 private:
  Exit exit_;
  std::string subject_;
};

/** The command line does not make sense. */
Failure usage_failure(const std::string& reason);

/** A file cannot be read, is not what it should be, or cannot be written. */
Failure file_failure(const std::string& file, const std::string& reason);

/** A library function returned a result code other than success; `meaning` replaces the general words for a code that
 *  means something else for this function. */
Failure refusal(const std::string& file, std::string_view function, uint32_t code, std::string_view meaning = {});

/** What QUO_NO_MEMORY most likely means where the library measures blocks of 16 x 16 pixels. */
inline constexpr std::string_view kNoBlock = "the frame is below 16 x 16 pixels, or a buffer could not be allocated";

/** The general meaning of a result code of the library, in words. */
std::string_view result_meaning(uint32_t code);

/** Throws the refusal unless `code` is success. */
inline void check_result(const std::string& file, std::string_view function, uint32_t code) {
  if (code != 0) throw refusal(file, function, code);
}

/** Writes the failure to standard error. */
void report(const std::exception& failure);

/** Tells on standard error something that the user should know and that stops nothing. */
void note(const std::string& file, const std::string& text);

/** Calls `work`, which returns an Exit. A failure is reported and becomes its exit code. */
template <typename Work>
Exit attempt(Work work) {
  try {
    return work();
  } catch (const Failure& failure) {
    report(failure);
    return failure.exit();
  }
}

/** Calls `work` for each item. A failure is reported and the other items still get their turn.
 *  @return the worst exit code that occurred */
template <typename Items, typename Work>
Exit for_each_item(const Items& items, Work work) {
  Exit exit = Exit::kDone;
  for (const auto& item : items) exit = worse(exit, attempt([&] { return work(item); }));
  return exit;
}

}  // namespace quofp
