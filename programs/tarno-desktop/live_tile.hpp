#pragma once

#include <functional>
#include <string>

#include "tarno/common/path_watch.hpp"
#include "tarno/common/wall_clock_timer.hpp"
#include "tarno/tarno-desktop/frame.hpp"

namespace desktop {

/// Returns the date of the next request after a request at `now`, which was answered with `reloadDate`; no
/// value means that it failed. The result is always later than `now`, so that no answer can keep the tile
/// busy.
tarno::Date nextRequest(tarno::Date now, const std::optional<tarno::Date>& reloadDate);

/// Keeps the picture of the tile up to date: requests a frame at the start, at the reload date, when the
/// status turns stale, and when the file of the store, the clock or the time zone changes. Prints each error
/// once until it changes, and tries again after 30 s.
class LiveTile final : public program::EventSource {
 public:
  /// Starts the first frame at once. Calls `show` with each new frame.
  LiveTile(FrameRequest request, std::function<void(const Frame&)> show);

  /// Adds this and its event sources to `loop`, which must outlive it.
  void addTo(program::EventLoop& loop);

  /// Requests a frame, because something may have changed. At most four frames per second are drawn; the last
  /// request is always honoured.
  void refresh() { isNeeded_ = true; }

  /// Requests a frame at `scale` pixels per point if the scale has changed.
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
  bool isNeeded_ = true;          ///< whether a frame is requested
  Clock::time_point notBefore_;   ///< when the next frame may start
  std::string errors_, failure_;  ///< the last ones that were printed, if they still apply
};

}  // namespace desktop
