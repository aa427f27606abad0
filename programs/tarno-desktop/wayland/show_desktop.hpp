#pragma once

#include <systemd/sd-bus.h>

#include "tarno/foundation/handle.hpp"

namespace desktop::wayland {

/// Learns from the session bus whether KWin shows the desktop, that is, hides all windows. Never waits for an
/// answer, and absorbs all failures of the bus: without it, the desktop counts as not shown.
class ShowDesktop {
 public:
  ShowDesktop();
  ShowDesktop(ShowDesktop&&) = delete;  // the bus keeps its address

  /// The descriptor to poll() for POLLIN; -1 without the bus.
  int descriptor() const { return bus_ ? sd_bus_get_fd(bus_.get()) : -1; }

  /// Sends and handles pending messages, then returns whether the desktop is shown.
  bool isShown();

 private:
  tarno::Handle<sd_bus, sd_bus_close_unref> bus_;
  int isShown_ = 0;
};

}  // namespace desktop::wayland
