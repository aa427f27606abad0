#include "wayland/layer_surface.hpp"

namespace desktop::wayland {

LayerSurface::LayerSurface(const Globals& globals, wl_output* output, const Options& options)
    : TileSurface(globals, options.anchor),
      layer_(options.layer == Layer::above ? ZWLR_LAYER_SHELL_V1_LAYER_TOP
                                           : ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM) {
  // KWin would take what says "desktop" for part of the desktop: it stays on "show desktop", but the next
  // click on another part of the desktop, the wallpaper, covers it for good. See ShowDesktopWatch.
  surface_.reset(
      zwlr_layer_shell_v1_get_layer_surface(globals.layers.get(), get(), output, layer_, "tarno-desktop"));
  static constexpr zwlr_layer_surface_v1_listener listener{
      .configure =
          [](void* self, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t, std::uint32_t) {
            zwlr_layer_surface_v1_ack_configure(layer, serial);
            static_cast<LayerSurface*>(self)->configured();
          },
      .closed = [](void* self, zwlr_layer_surface_v1*) { static_cast<LayerSurface*>(self)->closed(); }};
  zwlr_layer_surface_v1_add_listener(surface_.get(), &listener, this);

  const auto edge = [](double at, unsigned first, unsigned last) {
    return at == 0 ? first : at == 1 ? last : 0;
  };
  const Anchor& anchor = options.anchor;
  zwlr_layer_surface_v1_set_anchor(
      surface_.get(),
      edge(anchor.x, ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT, ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT) |
          edge(anchor.y, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP, ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM));
  const int margin = options.margin;  // counts at the edges that are anchored to
  zwlr_layer_surface_v1_set_margin(surface_.get(), margin, margin, margin, margin);
  const Proxy<wl_region> nothing{wl_compositor_create_region(globals.compositor.get())};
  wl_surface_set_input_region(get(), nothing.get());
  resize({1, 1});  // until the first picture
  wl_surface_commit(get());
}

void LayerSurface::raise(bool isRaised) {
  const bool canBeMoved =
      zwlr_layer_surface_v1_get_version(surface_.get()) >= ZWLR_LAYER_SURFACE_V1_SET_LAYER_SINCE_VERSION;
  if (isRaised == isRaised_ || !canBeMoved) return;
  isRaised_ = isRaised;
  zwlr_layer_surface_v1_set_layer(surface_.get(), isRaised ? ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY : layer_);
  wl_surface_commit(get());
}

void LayerSurface::resize(Extent size) {
  zwlr_layer_surface_v1_set_size(surface_.get(), static_cast<std::uint32_t>(size.width),
                                 static_cast<std::uint32_t>(size.height));
}

}  // namespace desktop::wayland
