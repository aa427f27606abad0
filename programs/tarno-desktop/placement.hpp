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

/// Chooses the monitor of a tile: the named monitor if there is one. If it was never connected, the tile
/// waits for it. If it was disconnected, or none is named, the choice is the primary monitor, or else the
/// first.
class MonitorChoice {
 public:
  explicit MonitorChoice(std::optional<std::string> connector) : connector_(std::move(connector)) {}

  /// Returns one of `monitors`, or null while the tile has to wait.
  const Monitor* among(const std::vector<Monitor>& monitors);

 private:
  std::optional<std::string> connector_;
  bool wasThere_ = false;
};

/// The position of a tile in the available area: 0 at the left or top edge, 1 at the right or bottom edge,
/// 0.5 in the middle.
struct Anchor {
  double x = 1, y = 0;

  friend bool operator==(const Anchor&, const Anchor&) = default;
};

/// Distances from the edges of an area.
struct Margin {
  int top = 0, right = 0, bottom = 0, left = 0;

  friend bool operator==(const Margin&, const Margin&) = default;
};

/// Returns the area of a tile of `width` x `height` in `room`: `margin` away from the edges that it is
/// anchored to, and centred on an axis without an anchor. A tile that does not fit starts at the left or top
/// edge of `room`. All values have the same unit.
Area place(int width, int height, const Area& room, const Anchor& anchor, const Margin& margin);

}  // namespace desktop
