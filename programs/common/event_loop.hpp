#pragma once

#include <poll.h>

#include <chrono>
#include <optional>
#include <vector>

namespace program {

/// Something that the event loop waits for.
class EventSource {
 public:
  using Clock = std::chrono::steady_clock;

  /// What to wait for: the events of any number of descriptors, as for poll(), and a deadline.
  struct Wait {
    std::vector<pollfd> descriptors{};
    Clock::time_point until = Clock::time_point::max();
  };

  EventSource() = default;
  EventSource(EventSource&&) = delete;  // the loop finds it where it is
  virtual ~EventSource() = default;

  /// Called before every sleep: sends what is pending and says what to wait for.
  virtual Wait prepare() = 0;

  /// Called after every sleep, in the order in which the sources were added. `events` is what poll() found
  /// for all descriptors of the source together, 0 for nothing. Also called when nothing has happened.
  virtual void dispatch(short events) = 0;
};

/// One poll() over everything that the program waits for. One thread; asleep in between.
class EventLoop {
 public:
  /// Asks `source`, which outlives the loop, from the next run() on.
  void add(EventSource& source) { sources_.push_back(&source); }

  /// Waits and dispatches until quit(); returns its code. Throws what a source throws.
  int run();

  /// Ends run() after the sources have been dispatched.
  void quit(int exitCode) { exitCode_ = exitCode; }

 private:
  std::vector<EventSource*> sources_;
  std::optional<int> exitCode_;
};

}  // namespace program
