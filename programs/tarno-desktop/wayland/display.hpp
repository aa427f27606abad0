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
  /// Releases a global on the client's side only. The compositor keeps it as long as the connection lasts.
  void operator()(auto* proxy) const { wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy)); }
  void operator()(wl_display* connection) const { wl_display_disconnect(connection); }
  void operator()(zxdg_output_v1* details) const { zxdg_output_v1_destroy(details); }
  void operator()(wl_output* output) const {
    const bool canRelease = wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION;
    canRelease ? wl_output_release(output) : wl_output_destroy(output);
  }
  void operator()(wl_pointer* pointer) const {
    const bool canRelease = wl_pointer_get_version(pointer) >= WL_POINTER_RELEASE_SINCE_VERSION;
    canRelease ? wl_pointer_release(pointer) : wl_pointer_destroy(pointer);
  }
};

/// Owns a global of the registry, or an object that was created from one. The connection must outlive it.
template <class T>
using Global = tarno::Handle<T, DestroyGlobal{}>;

/// A listener that ignores an event.
constexpr auto ignore = [](auto...) {};

/// Returns the object that a listener was added with. The member pointer gives its type.
template <class T, class Member>
T& listening(void* object, Member T::*) {
  return *static_cast<T*>(object);
}

/// A listener that stores the arguments of an event in members of the object.
template <auto... members>
constexpr auto store =
    [](void* object, auto*, auto... values) { ((listening(object, members).*members = values), ...); };

/// A listener that passes the arguments of an event to a member function of the object.
template <auto function>
constexpr auto call =
    [](void* object, auto*, auto... values) { (listening(object, function).*function)(values...); };

/// A monitor.
struct Output {
  std::uint32_t id = 0;  ///< its number in the registry
  Global<wl_output> proxy{};
  Global<zxdg_output_v1> details{};

  /// The monitor, with its position in points in the compositor's layout and its size in pixels. Absent until
  /// the compositor has sent everything about it. Changes that belong together take effect together.
  std::optional<Monitor> info{};

  // What the compositor has sent so far.
  std::string name{};
  Area mode{};                              // the size in pixels, before rotation
  int x = 0, y = 0, width = 0, height = 0;  // in points
};

/// Returns the scale of an output that shows `pixels` as `points`, in pixels per point. Compositors round
/// each side to whole points, up or down, so several scales may be possible; the result is the simplest
/// likely one.
double outputScale(const Area& pixels, const Area& points);

/// Returns the length, in points, of a side of a surface that shows `pixels` pixels at `scale` pixels per
/// point, without rescaling them. At a fractional scale, a whole number of points may end within a pixel. The
/// result is the shortest length that is at least as long as the picture and ends between two pixels, if
/// there is one. The picture is enlarged to it. Compositors round both edges of a surface to whole pixels, so
/// that such a surface is sharp at every position.
int surfaceSide(int pixels, double scale);

/// A connection to the Wayland display that WAYLAND_DISPLAY names, with its globals. Throws program::Failure:
/// EX_UNAVAILABLE if there is no display, it lacks a protocol that every tile needs, or it disappears;
/// EX_PROTOCOL if the compositor refuses a request; EX_OSERR if the connection breaks.
struct Display {
  /// Connects and waits for the globals.
  Display();
  Display(Display&&) = delete;  // listeners keep its address

  /// The descriptor to poll() for POLLIN.
  int descriptor() const { return wl_display_get_fd(connection.get()); }

  /// Handles events that have arrived. Does not block.
  void dispatch();

  Global<wl_display> connection;
  Global<wl_registry> registry;
  Global<wl_compositor> compositor;
  Global<wl_shm> memory;
  Global<wp_viewporter> viewports;
  Global<xdg_wm_base> windows;
  Global<zxdg_output_manager_v1> outputDetails;
  Global<zwlr_layer_shell_v1> layers;                       ///< null if missing
  Global<wp_fractional_scale_manager_v1> fractionalScales;  ///< null if missing
  Global<wl_seat> seat;                                     ///< the first one; null if missing
  std::uint32_t seatCapabilities = 0;
  bool isKWin = false;
  std::list<Output> outputs;  ///< in the order in which the compositor announced them

 private:
  void add(std::uint32_t id, const char* interface, std::uint32_t version);
  void remove(std::uint32_t id);
  void check(int result) const;
};

}  // namespace desktop::wayland
