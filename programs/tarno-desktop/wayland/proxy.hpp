#pragma once

#include <wayland-client.h>

#include <memory>

#include "fractional-scale-v1.h"
#include "layer-shell.h"
#include "viewporter.h"
#include "xdg-decoration-unstable-v1.h"
#include "xdg-output-unstable-v1.h"
#include "xdg-shell.h"

namespace desktop::wayland {

struct DestroyProxy {
  /// What lives as long as the connection ends with it; the compositor need not be told.
  template <class Global>
  void operator()(Global* proxy) const {
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy));
  }

  void operator()(wl_display* proxy) const { wl_display_disconnect(proxy); }
  void operator()(wl_output* proxy) const {
    if (wl_output_get_version(proxy) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
      wl_output_release(proxy);
    else
      wl_output_destroy(proxy);
  }
  void operator()(zxdg_output_v1* proxy) const { zxdg_output_v1_destroy(proxy); }
  void operator()(wl_surface* proxy) const { wl_surface_destroy(proxy); }
  void operator()(wl_region* proxy) const { wl_region_destroy(proxy); }
  void operator()(wl_shm_pool* proxy) const { wl_shm_pool_destroy(proxy); }
  void operator()(wl_buffer* proxy) const { wl_buffer_destroy(proxy); }
  void operator()(wp_viewport* proxy) const { wp_viewport_destroy(proxy); }
  void operator()(wp_fractional_scale_v1* proxy) const { wp_fractional_scale_v1_destroy(proxy); }
  void operator()(zwlr_layer_surface_v1* proxy) const { zwlr_layer_surface_v1_destroy(proxy); }
  void operator()(xdg_surface* proxy) const { xdg_surface_destroy(proxy); }
  void operator()(xdg_toplevel* proxy) const { xdg_toplevel_destroy(proxy); }
  void operator()(zxdg_toplevel_decoration_v1* proxy) const { zxdg_toplevel_decoration_v1_destroy(proxy); }
};

/// Owns an object of the Wayland protocol. The connection outlives it.
template <class T>
using Proxy = std::unique_ptr<T, DestroyProxy>;

}  // namespace desktop::wayland
