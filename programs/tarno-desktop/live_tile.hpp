#pragma once

#include <functional>
#include <string>

#include "common/path_watch.hpp"
#include "common/wall_clock_timer.hpp"
#include "tarno-desktop/frame_process.hpp"

namespace desktop {

/// Keeps a picture of the tile up to date: asks the extension's process for one at the start, at the reload
/// date, when the status turns stale, when the store's file, the clock or the time zone changes. What goes
/// wrong is said on standard error, once for as long as it stays the same, and tried again after 30 s.
class LiveTile final : public EventSource {
 public:
  /// Starts the first frame at once. `show` is called with each new frame.
  LiveTile(FrameRequest request, std::function<void(const Frame&)> show);

  /// Adds this and all that it waits for to `loop`, which outlives it.
  void addTo(program::EventLoop& loop);

  /// Asks for a frame because something may have changed; at most four are shown a second, the last always.
  void refresh() { isNeeded_ = true; }

  /// Asks for a frame at `scale` pixels per point, unless that is the scale already.
  void setScale(double scale);

  Wait prepare() override;
  void dispatch(short) override {}

 private:
  void answered(FrameAnswer answer);
  void sayOnce(const FrameAnswer& answer);
  void sleep(const std::optional<Frame>& frame);

  FrameRequest request_;
  std::function<void(const Frame&)> show_;
  FrameProcess process_;
  program::WallClockTimer timer_;
  program::PathWatch timeZone_, store_;
  bool isNeeded_ = true;          ///< a frame
  Clock::time_point notBefore_;   ///< when the next frame may start
  std::string failure_, errors_;  ///< that were said last, and still hold
};

}  // namespace desktop
