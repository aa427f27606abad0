#pragma once

#include <cstdint>
#include <list>

#include "wayland/output.hpp"
#include "wayland/proxy.hpp"

namespace desktop::wayland {

/// What the compositor offers; null is what it does not have.
struct Globals {
  Proxy<wl_registry> registry;
  Proxy<wl_compositor> compositor;
  Proxy<wl_shm> memory;
  Proxy<wp_viewporter> viewports;
  Proxy<wp_fractional_scale_manager_v1> fractionalScales;
  Proxy<zxdg_output_manager_v1> outputDetails;
  Proxy<zwlr_layer_shell_v1> layers;
  Proxy<xdg_wm_base> windows;
  Proxy<zxdg_decoration_manager_v1> decorations;
  std::uint32_t seat = 0;  ///< the registry's name for the first; 0 for none
  bool isKWin = false;
};

/// A connection to the Wayland display that WAYLAND_DISPLAY names. It throws program::Failure: EX_UNAVAILABLE
/// when there is none or when it went away, EX_PROTOCOL when the compositor refuses what it was sent.
class Connection {
 public:
  /// Waits until the compositor has said what there is.
  Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Sends what is pending. False when the compositor does not take it all now. Does not throw.
  bool flush();

  /// Handles what has arrived. Does not block.
  void dispatch();

  /// To poll() for POLLIN.
  int descriptor() const { return wl_display_get_fd(display_.get()); }
  const Globals& globals() const { return globals_; }

  /// In the order in which they came.
  const std::list<Output>& outputs() const { return outputs_; }

 private:
  void add(std::uint32_t id, const char* interface, std::uint32_t version);
  void check(int result) const;

  Proxy<wl_display> display_;
  Globals globals_;
  std::list<Output> outputs_;
};

}  // namespace desktop::wayland
