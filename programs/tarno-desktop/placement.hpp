#pragma once

#include <optional>
#include <string>
#include <vector>

namespace desktop {

/// A rectangle of the desktop, x to the right and y downwards. Pixels on X11, logical points on Wayland.
struct Area {
  int x = 0, y = 0, width = 0, height = 0;

  friend bool operator==(const Area&, const Area&) = default;
};

struct Monitor {
  std::string connector;  ///< "HDMI-1"
  Area area;              ///< its size in pixels
  double scale = 1;       ///< pixels per point
  bool isPrimary = false;
};

/// Chooses the monitor that a tile belongs to. One that is named but absent is waited for; while one that was
/// there is away, or for no name, it is the primary one, or else the first.
class MonitorChoice {
 public:
  explicit MonitorChoice(std::optional<std::string> connector) : connector_(std::move(connector)) {}

  /// Nothing while the tile has to wait.
  std::optional<Monitor> among(const std::vector<Monitor>& monitors);

 private:
  std::optional<std::string> connector_;
  bool wasThere_ = false;
};

/// Where a tile stands between the edges of the room that it has: 0 at the left or top edge, 1 at the right
/// or bottom edge, 0.5 in the middle.
struct Anchor {
  double x = 1, y = 0;

  friend bool operator==(const Anchor&, const Anchor&) = default;
};

/// Where a tile of `width` x `height` stands in `room`: `margin` away from the edges that it is anchored to,
/// in the middle of an axis that it is not anchored on. A tile that does not fit keeps its left and top edge
/// in the room. All in one unit.
Area place(int width, int height, const Area& room, const Anchor& anchor, int margin);

}  // namespace desktop
