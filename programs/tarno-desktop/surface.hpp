#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/event_loop.hpp"
#include "tarno-desktop/options.hpp"
#include "tarno-desktop/picture.hpp"

namespace desktop {

using program::EventSource;

/// A monitor, for people.
struct MonitorInfo {
  std::string connector;  ///< "HDMI-1"
  Area area;              ///< in pixels
  double scale = 1;       ///< pixels per point
  bool isPrimary = false;
};

/// What a surface tells its owner. Called from prepare() or dispatch(), never from a constructor or show().
struct SurfaceOwner {
  std::function<void()> scaleChanged;  ///< scale() answers something else than before
  std::function<void()> closed;        ///< somebody closed the tile; the program ends with code 0
  std::function<void()> moved;         ///< extents() answers something else than before
};

/// The tile's place on a display: the window or layer surface that shows its pictures. It follows the
/// monitors, the panels and the window manager by itself; without a monitor it keeps the picture and waits.
/// Its constructor throws program::Failure (EX_UNAVAILABLE) when it cannot connect to the display, and
/// dispatch() when that goes away.
class Surface : public EventSource {
 public:
  /// The scale that a picture should have now, in pixels per point; nothing while there is no monitor.
  virtual std::optional<double> scale() const = 0;

  /// Shows `picture` in place of the one before; the first makes the window. A picture of another scale than
  /// scale() is shown all the same, until the next one.
  virtual void show(std::shared_ptr<const Picture> picture) = 0;

  /// The title of the window, for window lists and screen readers.
  virtual void setTitle(const std::string& title) = 0;

  /// Where the tile is on the screen, in pixels, for screen readers. At 0, 0 where the display does not tell.
  virtual Area extents() const = 0;

  /// For standard error, once a picture was shown: "as a layer-shell surface in the bottom layer on HDMI-1".
  virtual std::string description() const = 0;

  /// In the display's order.
  virtual std::vector<MonitorInfo> monitors() const = 0;
};

}  // namespace desktop
