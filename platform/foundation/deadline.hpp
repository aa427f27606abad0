#pragma once

#include <algorithm>
#include <chrono>
#include <thread>

namespace foundation {

/// The end of the time that one operation may spend waiting for other processes. Immutable.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds patience) : end_(std::chrono::steady_clock::now() + patience) {}

  /// Sleeps for a moment, never past the end, and answers true; answers false at once when the time is up.
  bool waitAMoment() const {
    const auto left = end_ - std::chrono::steady_clock::now();
    if (left <= left.zero()) return false;
    std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, std::chrono::milliseconds{2}));
    return true;
  }

 private:
  std::chrono::steady_clock::time_point end_;
};

}  // namespace foundation
