#include "accessibility/accessible_tile.hpp"

#include <utility>

namespace desktop {

/// Tells an event of `object` to whoever listens for it.
template <class... Values>
void AccessibleTile::tell(const AccessibleObject& object, const char* event, const char* kind, int detail,
                          const char* type, Values... values) const {
  sd_bus_emit_signal(bus_.joined(), object.path.c_str(), "org.a11y.atspi.Event.Object", event, "siiva{sv}",
                     kind, detail, 0, type, values..., 0);
}

void AccessibleTile::update(const Frame& frame) {
  bus_.join();
  const auto said = std::exchange(frame_, frame).announcement;
  frame_.picture.reset();
  const auto before = std::exchange(objects_.tree, makeTree(frame_, extents_, scale_));
  if (!bus_.joined()) return;
  tellChanges(before);
  constexpr int polite = 1;  // AtspiLive
  if (frame_.announcement != said)
    tell(objects_.tree[1], "Announcement", "", polite, "s", frame_.announcement.c_str());
}

void AccessibleTile::tellChanges(const ObjectTree& before) const {
  const auto& now = objects_.tree;
  const auto tellChild = [&](const char* kind, const AccessibleObject& child, std::size_t number) {
    tell(now[1], "ChildrenChanged", kind, static_cast<int>(number) - 2, "(so)", objects_.busName.c_str(),
         child.path.c_str());
  };
  for (auto i = before.size(); i-- > 0;)
    if (i >= now.size() || now[i].path != before[i].path) tellChild("remove", before[i], i);
  for (std::size_t i = 0; i < now.size(); ++i) {
    const bool isNew = i >= before.size() || now[i].path != before[i].path;
    if (isNew) tellChild("add", now[i], i);
    if (isNew || now[i].name != before[i].name)
      tell(now[i], "PropertyChange", "accessible-name", 0, "s", now[i].name.c_str());
  }
}

void AccessibleTile::place(const Area& extents, double scale) {
  extents_ = extents;
  scale_ = scale;
  objects_.tree = makeTree(frame_, extents_, scale_);
}

}  // namespace desktop
