#pragma once

#include <functional>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Calls back at a moment of the wall clock; asleep until then. A clock that is set and a machine that wakes
/// from suspend end the sleep too: the callee finds out what time it is and decides anew.
class WallClockTimer final : public EventSource {
 public:
  /// Throws std::system_error when the system has no timer left.
  explicit WallClockTimer(std::function<void()> wake);

  /// Wakes once, when tarno::now() reaches `moment` or when the clock is set; at once when that is past.
  /// Takes the place of an earlier sleep.
  void sleepUntil(tarno::Date moment);

  Wait prepare() override { return {{{timer_.get(), POLLIN, 0}}}; }
  void dispatch(short events) override;

 private:
  std::function<void()> wake_;
  tarno::FileDescriptor timer_;
};

}  // namespace program
