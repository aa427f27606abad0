#pragma once

#include <poll.h>

#include <chrono>
#include <optional>
#include <vector>

namespace program {

/// A source of events for the event loop.
class EventSource {
 public:
  using Clock = std::chrono::steady_clock;

  /// What to wait for: events of descriptors, as for poll(), and a deadline.
  struct Wait {
    std::vector<pollfd> descriptors{};
    Clock::time_point until = Clock::time_point::max();
  };

  EventSource() = default;
  EventSource(EventSource&&) = delete;  // the loop keeps its address
  virtual ~EventSource() = default;

  /// Sends what is pending and returns what to wait for. The loop calls it before every sleep.
  virtual Wait prepare() = 0;

  /// Handles events. The loop calls it after every sleep, even if nothing has happened, in the order in which
  /// the sources were added. `events` combines the events of all descriptors of the source.
  virtual void dispatch(short events) = 0;
};

/// Waits for all event sources of a program with one poll(). For one thread.
class EventLoop {
 public:
  /// Adds `source`, which must outlive the loop, from the next run() on.
  void add(EventSource& source) { sources_.push_back(&source); }

  /// Waits and dispatches until quit(), and returns its code. Exceptions of a source pass through.
  int run();

  /// Ends run() after the current round of dispatching.
  void quit(int exitCode) { exitCode_ = exitCode; }

 private:
  std::vector<EventSource*> sources_;
  std::optional<int> exitCode_;
};

}  // namespace program
