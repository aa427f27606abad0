#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace desktop::wayland {

/// Whether KWin shows the desktop at the moment, as it tells on the session's bus. Without a bus, or with
/// another compositor, it never does.
class ShowDesktopWatch {
 public:
  ShowDesktopWatch();
  ShowDesktopWatch(const ShowDesktopWatch&) = delete;
  ShowDesktopWatch& operator=(const ShowDesktopWatch&) = delete;

  /// To poll() for POLLIN; -1 for none.
  int descriptor() const { return bus_ ? sd_bus_get_fd(bus_.get()) : -1; }

  /// Handles what has arrived first. Does not block.
  bool isShown();

 private:
  struct Close {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  };

  std::unique_ptr<sd_bus, Close> bus_;
  bool isShown_ = false;
};

}  // namespace desktop::wayland
