#pragma once

#include <functional>
#include <string>

#include "common/event_loop.hpp"
#include "common/path_watch.hpp"
#include "common/wall_clock_timer.hpp"
#include "tarno-desktop/frame_process.hpp"

namespace desktop {

using program::EventLoop;
using program::EventSource;
using program::PathWatch;
using program::WallClockTimer;

/// Keeps a picture of the tile up to date: asks the extension's process for one at the start, at the reload
/// date, when the status turns stale, when the store's file, the clock or the time zone changes. What goes
/// wrong is said on standard error, once for as long as it stays the same, and tried again after 30 s.
class LiveTile final : public EventSource {
 public:
  /// Starts the first frame at once. `show` is called with each new frame.
  LiveTile(FrameRequest request, std::function<void(const Frame&)> show);

  /// Adds this and all that it waits for to `loop`, which outlives it.
  void addTo(EventLoop& loop);

  /// Asks for a frame because something may have changed; at most four times a second, for the last change
  /// too.
  void refresh();

  /// Asks for a frame at `scale` pixels per point, unless that is the scale already.
  void setScale(double scale);

  Wait prepare() override;
  void dispatch(short) override {}

 private:
  enum class Need { none, soon, now };

  void ask();
  void answered(FrameAnswer answer);
  void passOn(const std::string& errors);
  void sleep(const std::optional<Frame>& frame);

  FrameRequest request_;
  std::function<void(const Frame&)> show_;
  FrameProcess process_;
  WallClockTimer timer_;
  PathWatch timeZone_;
  PathWatch store_;
  Need need_ = Need::now;
  Clock::time_point notBefore_;  ///< when the next frame that is needed soon may start
  std::string failure_;          ///< that was said last, and still holds
  std::string errors_;           ///< that were passed on last
};

}  // namespace desktop
