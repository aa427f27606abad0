#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>

#include "tarno/tarno-desktop/surface.hpp"
#include "tarno/wayland/proxy.hpp"

namespace desktop::wayland {

/// A monitor.
struct Output {
  std::uint32_t id = 0;  ///< the registry's name
  Proxy<wl_output> proxy{};
  Proxy<zxdg_output_v1> details{};

  /// The place in points, as the compositor lays its monitors out; the size in pixels. Nothing until the
  /// compositor has said everything about it; changes that belong together show at once.
  std::optional<Monitor> info{};

  // What the compositor has said so far.
  std::string name{};
  Area mode{};                              // in pixels, as the monitor scans it
  int x = 0, y = 0, width = 0, height = 0;  // in points
};

/// The scale of an output that shows `pixels` as `points`, in pixels per point. Compositors make a whole
/// number of points of each side, this way or that; it is the simplest of the likely fractions that lead to
/// both.
double outputScale(const Area& pixels, const Area& points);

/// The length in points of a surface's side that shows `pixels` at `scale` pixels per point, pixel by pixel.
/// At a fractional scale a whole number of points may end within a pixel: this is the shortest that does not,
/// if there is one, for a picture that is grown to it. Compositors put both edges on the next pixel, so that
/// such a surface is sharp wherever it stands.
int surfaceSide(int pixels, double scale);

/// A connection to the Wayland display that WAYLAND_DISPLAY names, and what there is. It throws
/// program::Failure: EX_UNAVAILABLE when there is none, when it lacks what every tile needs or when it went
/// away, EX_PROTOCOL when the compositor refuses what it was sent.
struct Display {
  /// Waits until the compositor has said what there is.
  Display();
  Display(Display&&) = delete;  // events find it where it is

  /// To poll() for POLLIN.
  int descriptor() const { return wl_display_get_fd(connection.get()); }

  /// Handles what has arrived. Does not block.
  void dispatch();

  Proxy<wl_display> connection;
  Proxy<wl_registry> registry;
  Proxy<wl_compositor> compositor;
  Proxy<wl_shm> memory;
  Proxy<wp_viewporter> viewports;
  Proxy<xdg_wm_base> windows;
  Proxy<zxdg_output_manager_v1> outputDetails;
  Proxy<zwlr_layer_shell_v1> layers;                       ///< null where there is none
  Proxy<wp_fractional_scale_manager_v1> fractionalScales;  ///< null where there is none
  Proxy<wl_seat> seat;                                     ///< the first; null where there is none
  std::uint32_t seatCapabilities = 0;
  bool isKWin = false;
  std::list<Output> outputs;  ///< in the order in which they came

 private:
  void add(std::uint32_t id, const char* interface, std::uint32_t version);
  void remove(std::uint32_t id);
  void check(int result) const;
};

}  // namespace desktop::wayland
