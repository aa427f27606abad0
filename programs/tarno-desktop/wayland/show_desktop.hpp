#pragma once

#include <systemd/sd-bus.h>

#include "tarno/foundation/handle.hpp"

namespace desktop::wayland {

/// Follows whether KWin shows the desktop, with all windows out of the way, as it tells on the session's bus.
/// Without the bus it does not. Never waits for an answer.
class ShowDesktop {
 public:
  ShowDesktop();
  ShowDesktop(const ShowDesktop&) = delete;  // the bus stores what it tells here
  ShowDesktop& operator=(const ShowDesktop&) = delete;

  /// To poll() for POLLIN; -1 without the bus.
  int descriptor() const { return bus_ ? sd_bus_get_fd(bus_.get()) : -1; }

  /// Sends and handles what is pending, then answers.
  bool isShown();

 private:
  tarno::Handle<sd_bus, sd_bus_close_unref> bus_;
  int isShown_ = 0;
};

}  // namespace desktop::wayland
