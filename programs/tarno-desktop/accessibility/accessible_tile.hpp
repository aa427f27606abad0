#pragma once

#include <systemd/sd-bus.h>

#include <map>
#include <string>

#include "tarno/accessibility/accessible_objects.hpp"
#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/handle.hpp"

namespace desktop {

/// The tile for screen readers: an application on the AT-SPI bus, with one window that contains an image and
/// labels. It first connects to the session bus to learn whether a screen reader runs, and then moves to the
/// AT-SPI bus. It never waits for an answer, and absorbs all failures of the buses.
class AccessibleTile final : public program::EventSource {
 public:
  /// Sets the content of the tile. Each reader gets an announcement once, with the level "polite": when the
  /// announcement is new, or when the reader starts. A changed label sends an event; an unchanged one does
  /// not.
  void update(const Frame& frame);

  /// Sets the position of the tile on the screen and the pixels per point.
  void place(const Area& extents, double scale);

  Wait prepare() override;
  void dispatch(short events) override;

 private:
  // The steps up to join(), in this order. Each gets the answer to the request of the step before.
  void openSession();
  void askStatus(sd_bus_message*);
  void askAddress(sd_bus_message* status);
  void enter(sd_bus_message* address);
  void follow(sd_bus_message* connected);
  void embed();
  void join(sd_bus_message* desktop);
  void embedAgain(sd_bus_message* owners);

  template <auto use>
  static int answered(sd_bus_message* answer, void* self, sd_bus_error*);
  template <class... Values>
  void tell(const char* reader, const AccessibleObject& object, const char* event, const char* kind,
            int detail, const char* type, Values... values) const;
  void tellChanges(const std::vector<AccessibleObject>& before) const;
  void askListeners(sd_bus_message*);
  void announce(sd_bus_message* listeners);

  Frame frame_;  ///< the content; its picture is null
  Area extents_;
  double scale_ = 1;
  AccessibleObjects objects_;
  tarno::Handle<sd_bus, sd_bus_close_unref> bus_;
  std::map<std::string, std::string> heard_;  ///< the last announcement to each reader, by its bus name
  bool isDue_ = false;                        ///< whether to try to join the bus
  bool isJoined_ = false;                     ///< whether it is on the accessibility bus
};

}  // namespace desktop
