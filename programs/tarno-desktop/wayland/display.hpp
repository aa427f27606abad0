#pragma once

#include <wayland-client.h>

#include <cstdint>
#include <list>

#include "fractional-scale-v1.h"
#include "layer-shell.h"
#include "tarno/foundation/handle.hpp"
#include "tarno/tarno-desktop/surface.hpp"
#include "viewporter.h"
#include "xdg-output-unstable-v1.h"
#include "xdg-shell.h"

namespace desktop::wayland {

struct DestroyGlobal {
  /// What lives as long as the connection ends with it; the compositor need not be told.
  void operator()(auto* proxy) const { wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy)); }
  void operator()(wl_display* connection) const { wl_display_disconnect(connection); }
  void operator()(zxdg_output_v1* details) const { zxdg_output_v1_destroy(details); }
  void operator()(wl_output* output) const {
    const bool canRelease = wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION;
    canRelease ? wl_output_release(output) : wl_output_destroy(output);
  }
};

/// Owns what the registry lists. The connection outlives it.
template <class T>
using Global = tarno::Handle<T, DestroyGlobal{}>;

/// For listeners: ignores an event.
constexpr auto ignore = [](auto...) {};

/// The object with `member` that a listener was added with.
template <class T, class Member>
T& listening(void* object, Member T::*) {
  return *static_cast<T*>(object);
}

/// For listeners: stores what an event brings in members of that object.
template <auto... members>
constexpr auto store =
    [](void* object, auto*, auto... values) { ((listening(object, members).*members = values), ...); };

/// For listeners: hands what an event brings to a member function of that object.
template <auto function>
constexpr auto call =
    [](void* object, auto*, auto... values) { (listening(object, function).*function)(values...); };

/// A monitor.
struct Output {
  std::uint32_t id = 0;  ///< the registry's name
  Global<wl_output> proxy{};
  Global<zxdg_output_v1> details{};

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

  Global<wl_display> connection;
  Global<wl_registry> registry;
  Global<wl_compositor> compositor;
  Global<wl_shm> memory;
  Global<wp_viewporter> viewports;
  Global<xdg_wm_base> windows;
  Global<zxdg_output_manager_v1> outputDetails;
  Global<zwlr_layer_shell_v1> layers;                       ///< null where there is none
  Global<wp_fractional_scale_manager_v1> fractionalScales;  ///< null where there is none
  Global<wl_seat> seat;                                     ///< the first; null where there is none
  std::uint32_t seatCapabilities = 0;
  bool isKWin = false;
  std::list<Output> outputs;  ///< in the order in which they came

 private:
  void add(std::uint32_t id, const char* interface, std::uint32_t version);
  void remove(std::uint32_t id);
  void check(int result) const;
};

}  // namespace desktop::wayland
