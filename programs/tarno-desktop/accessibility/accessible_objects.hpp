#pragma once

#include <systemd/sd-bus.h>

#include <string>
#include <vector>

#include "tarno/tarno-desktop/frame.hpp"
#include "tarno/tarno-desktop/placement.hpp"

namespace desktop {

/// Something that a screen reader finds.
struct AccessibleObject {
  int role;          ///< AtspiRole
  std::string path;  ///< on the bus; of another role, of another path: clients remember what is at one
  std::string name;
  Area bounds;  ///< in pixels on the screen
};

/// What AT-SPI's clients may ask about; may change from one answer to the next.
struct AccessibleObjects {
  /// Where they are in the tree. The window is the application's only child; all from the first element on
  /// are the window's. So is the notification, but it is not among its children: it is only told of.
  enum Index { application, window, notification, firstElement };

  std::vector<AccessibleObject> tree;
  std::string busName;      ///< of the connection that they are on
  std::string desktopName;  ///< of the connection that the application's parent is on
  std::string desktopPath = "/org/a11y/atspi/null";  ///< of the application's parent
};

/// What `frame` shows in a window at `extents`, in pixels, with `scale` pixels per point.
std::vector<AccessibleObject> makeTree(const Frame& frame, const Area& extents, double scale);

/// Answers on `bus` what is asked about `objects`, which outlive it. Returns a negative errno on failure.
int answerFor(AccessibleObjects& objects, sd_bus* bus);

}  // namespace desktop
