#pragma once

#include <functional>
#include <string>

#include "tarno/common/path_watch.hpp"
#include "tarno/common/wall_clock_timer.hpp"
#include "tarno/tarno-desktop/frame.hpp"

namespace desktop {

/// Returns when to make the next request, after the one at `now` was answered with `reloadDate`, or failed
/// (no value). Always later than `now`, so that no answer keeps the tile busy.
tarno::Date nextRequest(tarno::Date now, const std::optional<tarno::Date>& reloadDate);

/// Keeps a picture of the tile up to date: asks the extension's process for one at the start, at the reload
/// date, when the status turns stale, when the store's file, the clock or the time zone changes. What goes
/// wrong is said on standard error, once for as long as it stays the same, and tried again after 30 s.
class LiveTile final : public program::EventSource {
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
  void dispatch(short events) override;

 private:
  void start();
  void sayOnce(const std::string& errors, const std::string& failure);
  void sleep(const std::optional<Frame>& frame);

  FrameRequest request_;
  std::function<void(const Frame&)> show_;
  program::WallClockTimer timer_{[this] { refresh(); }};
  program::PathWatch timeZone_{[this] { refresh(); }}, store_{[this] { refresh(); }};
  std::optional<FrameProcess> process_;
  bool isNeeded_ = true;          ///< a frame
  Clock::time_point notBefore_;   ///< when the next frame may start
  std::string errors_, failure_;  ///< that were said last, and still hold
};

}  // namespace desktop
