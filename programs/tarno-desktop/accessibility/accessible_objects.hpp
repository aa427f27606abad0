#pragma once

#include <systemd/sd-bus.h>

#include <string>
#include <vector>

#include "tarno/tarno-desktop/frame.hpp"
#include "tarno/tarno-desktop/placement.hpp"

namespace desktop {

struct AccessibleRole {
  int number;        ///< AtspiRole
  const char* name;  ///< in English
};

/// An object that a screen reader finds.
struct AccessibleObject {
  AccessibleRole role;
  std::string path;  ///< its path on the bus; includes the role, because clients cache objects by path
  std::string name;
  Area bounds;  ///< in pixels on the screen
};

/// The objects that AT-SPI clients can ask about. The owner may change them between requests.
struct AccessibleObjects {
  /// The positions in the tree. The window is the only child of the application; the elements are children of
  /// the window. The notification has the window as its parent, too, but is not among its children.
  enum Index { application, window, notification, firstElement };

  std::vector<AccessibleObject> tree;
  std::string busName;      ///< the name of their connection to the bus
  std::string desktopName;  ///< the bus name of the application's parent, the desktop
  std::string desktopPath = "/org/a11y/atspi/null";  ///< the path of that parent
};

/// Returns the objects of `frame` in a window at `extents`, in pixels, with `scale` pixels per point.
std::vector<AccessibleObject> makeTree(const Frame& frame, const Area& extents, double scale);

/// Answers requests on `bus` about `objects`, which must outlive it. Returns a negative errno on failure.
int answerFor(AccessibleObjects& objects, sd_bus* bus);

}  // namespace desktop
