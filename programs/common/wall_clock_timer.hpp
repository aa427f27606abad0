#pragma once

#include <functional>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Calls back at a date of the wall clock. Also calls back when the clock is set and when the machine resumes
/// from suspend, so that the callee can check the time.
class WallClockTimer final : public EventSource {
 public:
  /// Throws std::system_error if the system has no timer left.
  explicit WallClockTimer(std::function<void()> wake);

  /// Calls back once: when tarno::now() reaches `moment` or the clock is set, or at once if `moment` has
  /// passed. Replaces an earlier call.
  void sleepUntil(tarno::Date moment);

  Wait prepare() override { return {{{timer_.get(), POLLIN, 0}}}; }
  void dispatch(short events) override;

 private:
  std::function<void()> wake_;
  tarno::FileDescriptor timer_;
};

}  // namespace program
