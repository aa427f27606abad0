#pragma once

#include <systemd/sd-bus.h>

#include "tarno/accessibility/accessible_objects.hpp"
#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/handle.hpp"

namespace desktop {

/// The tile for screen readers: an application with one window that contains an image and labels, on the
/// AT-SPI bus. It joins that bus as soon as a screen reader listens, which it learns on the session bus, and
/// then leaves the session bus. It never waits for an answer, and absorbs all failures of the buses.
class AccessibleTile final : public program::EventSource {
 public:
  /// Sets the content of the tile. A new announcement is spoken politely; a changed label sends a change of
  /// name; unchanged elements send nothing.
  void update(const Frame& frame);

  /// Sets the position of the tile on the screen and the pixels per point.
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

  Frame frame_;  ///< without the picture
  Area extents_;
  double scale_ = 1;
  AccessibleObjects objects_;
  tarno::Handle<sd_bus, sd_bus_close_unref> bus_;
  bool isDue_ = false;     ///< whether to try to join the bus
  bool isJoined_ = false;  ///< whether it is on the accessibility bus
};

}  // namespace desktop
