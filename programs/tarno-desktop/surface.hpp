#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/picture.hpp"

namespace desktop {

/// How a surface is shown.
struct SurfaceState {
  std::vector<Monitor> monitors;  ///< all, in the display's order
  std::optional<Monitor>
      monitor;            ///< the tile's, with the scale for pictures; nothing while it waits for one
  Area extents;           ///< on the screen, in pixels; at 0, 0 where the display does not tell
  bool isClosed = false;  ///< by somebody
};

/// The tile's place on a display: the window or layer surface that shows its pictures. It follows the
/// monitors, the panels and the window manager by itself; without a monitor it keeps the picture and waits.
/// Its constructor throws program::Failure (EX_UNAVAILABLE) when it cannot connect to the display, and
/// dispatch() when that goes away.
class Surface : public program::EventSource {
 public:
  /// Brought up to date by the constructor and prepare().
  const SurfaceState& state() const { return state_; }

  /// What it is, for people: "a layer-shell surface in the bottom layer".
  const std::string& kind() const { return kind_; }

  /// From the next prepare() on, shows `picture` in place of the one before, unless they look the same: then
  /// neither the display nor a compositor has to do anything. The first makes the window. One of another
  /// scale than the monitor's is shown all the same. Window lists show `title`.
  void show(std::shared_ptr<const Picture> picture, const std::string& title) {
    if (!picture_ || *picture_ != *picture) picture_ = std::move(picture);
    title_ = title;
  }

 protected:
  Surface(const Options& options, std::string kind)
      : options_(options), kind_(std::move(kind)), choice_(options.monitor) {}

  const Options options_;
  const std::string kind_;
  MonitorChoice choice_;
  SurfaceState state_;
  std::shared_ptr<const Picture> picture_;  ///< null before the first
  std::string title_;
};

}  // namespace desktop
