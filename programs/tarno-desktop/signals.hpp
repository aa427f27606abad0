#pragma once

#include <functional>

#include "common/event_loop.hpp"
#include "foundation/file_descriptor.hpp"

namespace desktop {

/// The signals that the program takes. From now on it neither dies of these nor of SIGPIPE: a reader of
/// standard error or a display may go away.
class Signals final : public program::EventSource {
 public:
  /// Calls `end` on SIGTERM, SIGINT and SIGHUP, and `ask` on SIGUSR1. Make it before any thread starts.
  /// Throws std::system_error when the system has no descriptor left.
  Signals(std::function<void()> end, std::function<void()> ask);

  /// Sleeps until one comes that ends the program, at most for `time` (below a second); returns whether one
  /// has come. For when no loop is running.
  static bool isEndedWithin(std::chrono::milliseconds time);

  Wait prepare() override { return {descriptor_.get()}; }
  void dispatch(short events) override;

 private:
  std::function<void()> end_, ask_;
  foundation::FileDescriptor descriptor_;
};

}  // namespace desktop
