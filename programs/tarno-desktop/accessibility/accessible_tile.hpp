#pragma once

#include <systemd/sd-bus.h>

#include "tarno/accessibility/accessible_objects.hpp"
#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/handle.hpp"

namespace desktop {

/// The tile for screen readers: an application with one window, an image and labels in it, on the AT-SPI bus.
/// Joins that when there is one and a screen reader listens, now or later: the session bus tells so, and
/// where the other bus is, which then takes its place. Without it nothing else changes: it waits for no
/// answer, and all failures of the buses are absorbed.
class AccessibleTile final : public program::EventSource {
 public:
  /// What is on the tile now. A new announcement is spoken politely, a changed label is told as a change of
  /// its name, and what stays the same says nothing.
  void update(const Frame& frame);

  /// Where the tile is on the screen and how many pixels a point has there.
  void place(const Area& extents, double scale);

  Wait prepare() override;
  void dispatch(short events) override;

 private:
  // In this order, each called with the answer to the one before.
  void openSession();
  void askStatus(sd_bus_message*);
  void askAddress(sd_bus_message* status);
  void enter(sd_bus_message* address);
  void embed(sd_bus_message* connected);
  void join(sd_bus_message* desktop);

  template <auto use>
  static int answered(sd_bus_message* answer, void* self, sd_bus_error*);
  template <class... Values>
  void tell(const AccessibleObject& object, const char* event, const char* kind, int detail, const char* type,
            Values... values) const;
  void tellChanges(const std::vector<AccessibleObject>& before) const;
  void announce(sd_bus_message* listeners);

  Frame frame_;  ///< without its picture
  Area extents_;
  double scale_ = 1;
  AccessibleObjects objects_;
  tarno::Handle<sd_bus, sd_bus_close_unref> bus_;
  bool isDue_ = false;     ///< the way to the bus, unless it is on it
  bool isJoined_ = false;  ///< in the accessibility bus
};

}  // namespace desktop
