#pragma once

#include <poll.h>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace program {

/// Something that the event loop waits for.
class EventSource {
 public:
  using Clock = std::chrono::steady_clock;

  /// What to wait for. A source without a descriptor has -1, one without a deadline never ends the sleep.
  struct Wait {
    int descriptor = -1;
    short events = POLLIN;  ///< as for poll()
    std::optional<Clock::time_point> until;
  };

  virtual ~EventSource() = default;

  /// Called before every sleep: sends what is pending and says what to wait for.
  virtual Wait prepare() = 0;

  /// Called after every sleep, in the order in which the sources were added. `events` is what poll() found
  /// for the descriptor, 0 for nothing. The loop forgives calls without a reason.
  virtual void dispatch(short events) = 0;
};

/// One poll() over everything that the program waits for. One thread; asleep in between.
class EventLoop {
 public:
  /// `source` is asked from now on. It outlives the loop, or is removed before it goes.
  void add(EventSource& source);
  void remove(EventSource& source);

  /// Calls `callback` before every sleep, when all sources are prepared. The last one counts.
  void beforeSleep(std::function<void()> callback) { beforeSleep_ = std::move(callback); }

  /// Waits and dispatches until quit(); returns its code. Throws what a source throws.
  int run();

  /// Ends run() after the sources have been dispatched.
  void quit(int exitCode) { exitCode_ = exitCode; }

 private:
  std::vector<EventSource*> sources_;
  std::function<void()> beforeSleep_ = [] {};
  std::optional<int> exitCode_;
};

}  // namespace program
