#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarno-desktop/frame.hpp"
#include "tarno-desktop/placement.hpp"

namespace desktop {

/// Something that a screen reader finds.
struct AccessibleObject {
  int parent;          ///< its index in the tree; -1: it is the root
  std::uint32_t role;  ///< AT-SPI's number, AtspiRole
  const char* roleName;
  std::string path;  ///< on the bus; of another role, of another path: clients remember what is at one
  std::string name;
  Area bounds;  ///< in pixels on the screen
};

/// The application, the window in it, the elements in that: an object's children directly follow it.
using ObjectTree = std::vector<AccessibleObject>;

/// What `frame` shows in a window at `extents`, in pixels, with `scale` pixels per point.
ObjectTree makeTree(const Frame& frame, const Area& extents, double scale);

int childCount(const ObjectTree& tree, int object);

/// -1 for a path without an object.
int objectWithPath(const ObjectTree& tree, std::string_view path);

/// The innermost object at a place on the screen that is `object` or a child of it; -1 when there is none.
int objectAt(const ObjectTree& tree, int object, int x, int y);

}  // namespace desktop
