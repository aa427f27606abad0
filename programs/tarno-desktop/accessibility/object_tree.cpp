#include "accessibility/object_tree.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {

ObjectTree makeTree(const Frame& frame, const Area& extents, double scale) {
  const std::string folder = "/org/a11y/atspi/accessible/";
  const auto pixels = [scale](double points) { return static_cast<int>(std::lround(points * scale)); };
  ObjectTree tree{{-1, 75, "application", folder + "root", "tarno-desktop", {}},
                  {0, 23, "frame", folder + "window", frame.title, extents}};
  for (const auto& [role, label, x, y, width, height] : frame.elements) {
    const int left = pixels(x), top = pixels(y);
    const Area bounds{extents.x + left, extents.y + top, pixels(x + width) - left, pixels(y + height) - top};
    const bool isImage = role == "image";
    const char* const roleName = isImage ? "image" : "label";
    const auto path = folder + (roleName + std::to_string(tree.size()));
    tree.push_back({1, isImage ? 27U : 29U, roleName, path, label, bounds});
  }
  return tree;
}

int childCount(const ObjectTree& tree, int object) {
  const auto isChild = [object](const AccessibleObject& other) { return other.parent == object; };
  return static_cast<int>(std::count_if(tree.begin(), tree.end(), isChild));
}

int objectWithPath(const ObjectTree& tree, std::string_view path) {
  const auto isThere = [path](const AccessibleObject& object) { return object.path == path; };
  const auto found = std::find_if(tree.begin(), tree.end(), isThere);
  return found == tree.end() ? -1 : static_cast<int>(found - tree.begin());
}

int objectAt(const ObjectTree& tree, int object, int x, int y) {
  for (int i = object + childCount(tree, object); i >= object; --i)
    if (const Area& area = tree[static_cast<std::size_t>(i)].bounds;
        x >= area.x && y >= area.y && x < area.x + area.width && y < area.y + area.height)
      return i;
  return -1;
}

}  // namespace desktop
