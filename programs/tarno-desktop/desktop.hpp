#pragma once

#include <memory>
#include <optional>

#include "tarno-desktop/live_tile.hpp"
#include "tarno-desktop/root_watch.hpp"
#include "tarno-desktop/tile_window.hpp"
#include "tarno-desktop/time_zone_watch.hpp"
#include "tarno-desktop/wall_clock_timer.hpp"

namespace desktop {

/// Keeps a widget's tile on the desktop: asks for a timeline at the start, at each reload date and whenever
/// the clock or the time zone is set, and follows the monitors. One at a time in a process, on GTK's thread.
class Desktop {
 public:
  /// GTK has been initialised, on `display`.
  Desktop(const Options& options, const widgetkit::WidgetConfiguration& widget, GdkDisplay* display);
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// Shows the tile until a signal or the window manager ends it; returns the program's exit code. Throws
  /// program::Failure (EX_USAGE) when the monitor that was asked for is not there at the start.
  int run();

 private:
  void ask();
  void place();
  void placeSoon();
  void closed();
  void draw(cairo_t* cairo, int scale, bool isOpaque);
  void watchMonitors();
  void endOnSignals();

  const Options options_;
  const std::string title_;
  GdkDisplay* display_;
  const Way way_;
  LiveTile tile_;
  std::optional<Monitor> monitor_;  ///< that the window is on
  Area room_;                       ///< that the window was placed in, on X11
  std::optional<RootWatch> roomWatch_;
  std::unique_ptr<TileWindow> window_;
  WallClockTimer timer_;
  TimeZoneWatch timeZone_;
  unsigned placing_ = 0;
  GMainLoop* loop_;
};

}  // namespace desktop
