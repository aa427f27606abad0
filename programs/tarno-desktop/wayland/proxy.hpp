#pragma once

#include <wayland-client.h>

#include "fractional-scale-v1.h"
#include "layer-shell.h"
#include "tarno/foundation/handle.hpp"
#include "viewporter.h"
#include "xdg-output-unstable-v1.h"
#include "xdg-shell.h"

namespace desktop::wayland {

/// Destroys an object of the protocol. What lives as long as the connection ends with it: only of the rest
/// does the compositor have to be told.
struct Destroy {
  void operator()(auto* proxy) const { wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy)); }
  void operator()(wl_display* proxy) const { wl_display_disconnect(proxy); }
  void operator()(wl_output* proxy) const {
    const bool canRelease = wl_output_get_version(proxy) >= WL_OUTPUT_RELEASE_SINCE_VERSION;
    canRelease ? wl_output_release(proxy) : wl_output_destroy(proxy);
  }
  void operator()(zxdg_output_v1* proxy) const { zxdg_output_v1_destroy(proxy); }
  void operator()(wl_surface* proxy) const { wl_surface_destroy(proxy); }
  void operator()(wl_region* proxy) const { wl_region_destroy(proxy); }
  void operator()(wl_shm_pool* proxy) const { wl_shm_pool_destroy(proxy); }
  void operator()(wl_buffer* proxy) const { wl_buffer_destroy(proxy); }
  void operator()(wp_viewport* proxy) const { wp_viewport_destroy(proxy); }
  void operator()(wp_fractional_scale_v1* proxy) const { wp_fractional_scale_v1_destroy(proxy); }
  void operator()(zwlr_layer_surface_v1* proxy) const { zwlr_layer_surface_v1_destroy(proxy); }
};

/// Owns an object of the Wayland protocol. The connection outlives it.
template <class T>
using Proxy = tarno::Handle<T, Destroy{}>;

/// For listeners: ignores an event.
constexpr auto ignore = [](auto...) {};

/// For listeners: stores what an event brings in members of the object that the listener was added with.
template <auto... members>
constexpr auto store = [](void* object, auto*, auto... values) {
  const auto at = []<class T, class Member>(void* data, Member T::*) { return static_cast<T*>(data); };
  ((at(object, members)->*members = values), ...);
};

/// For listeners: hands what an event brings to a member function of that object.
template <auto function>
constexpr auto call = [](void* object, auto*, auto... values) {
  const auto at = []<class T, class Member>(void* data, Member T::*) { return static_cast<T*>(data); };
  (at(object, function)->*function)(values...);
};

}  // namespace desktop::wayland
