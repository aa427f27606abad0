#pragma once

#include <functional>

#include "foundation/date.hpp"

namespace desktop {

/// Calls back at a moment of the wall clock, in the GLib main loop of the thread that made it; asleep until
/// then. A clock that is set and a machine that wakes from suspend end the sleep too: whoever sleeps finds
/// out what time it is and decides anew.
class WallClockTimer {
 public:
  /// Throws std::system_error when the system has no timer left.
  explicit WallClockTimer(std::function<void()> wake);
  ~WallClockTimer();
  WallClockTimer(const WallClockTimer&) = delete;
  WallClockTimer& operator=(const WallClockTimer&) = delete;

  /// Wakes once, when foundation::now() reaches `moment` or when the clock is set; at once when that is past.
  /// Takes the place of an earlier sleep.
  void sleepUntil(foundation::Date moment);

 private:
  void expired();

  std::function<void()> wake_;
  int descriptor_;
  unsigned source_;
};

}  // namespace desktop
