#pragma once

#include "accessibility/accessibility_bus.hpp"
#include "common/event_loop.hpp"
#include "tarno-desktop/frame.hpp"
#include "tarno-desktop/placement.hpp"

namespace desktop {

using program::EventSource;

/// The tile for screen readers: an application with one window, an image and labels in it, on the AT-SPI bus.
/// Joins the bus when there is one and a screen reader listens, now or later; without it nothing else
/// changes. All failures of the bus are absorbed: a tile without a bus is a tile.
class AccessibleTile final : public EventSource {
 public:
  AccessibleTile() = default;
  AccessibleTile(const AccessibleTile&) = delete;
  AccessibleTile& operator=(const AccessibleTile&) = delete;

  /// What is on the tile now. A new announcement is spoken politely, a changed label is told as a change of
  /// its name, and what stays the same says nothing.
  void update(const Frame& frame);

  /// Where the tile is on the screen and how many pixels a point has there.
  void place(const Area& extents, double scale);

  Wait prepare() override { return bus_.wait(); }
  void dispatch(short) override { bus_.process(); }

 private:
  template <class... Values>
  void tell(const AccessibleObject& object, const char* event, const char* kind, int detail, const char* type,
            Values... values) const;
  void tellChanges(const ObjectTree& before) const;

  Frame frame_;  ///< without its picture
  Area extents_;
  double scale_ = 1;
  ObjectsOnBus objects_;
  AccessibilityBus bus_{objects_};
};

}  // namespace desktop
