#include "wayland/tile_surface.hpp"

#include <utility>

namespace desktop::wayland {
namespace {

/// One is shown, one may be on its way, and a compositor that sleeps piles up no more than that.
constexpr std::size_t buffersInFlight = 3;

}  // namespace

TileSurface::TileSurface(const Globals& globals, const Anchor& anchor)
    : globals_(globals), anchor_(anchor), surface_(wl_compositor_create_surface(globals.compositor.get())) {
  static constexpr auto at = [](void* self) -> TileSurface& { return *static_cast<TileSurface*>(self); };
  static constexpr wl_surface_listener listener{
      .enter = [](void* self, wl_surface*, wl_output* output) { at(self).output_ = output; },
      .leave =
          [](void* self, wl_surface*, wl_output* output) {
            if (at(self).output_ == output) at(self).output_ = nullptr;
          }};
  wl_surface_add_listener(surface_.get(), &listener, this);
  if (!globals.viewports) return;
  viewport_.reset(wp_viewporter_get_viewport(globals.viewports.get(), surface_.get()));
  if (!globals.fractionalScales) return;
  static constexpr wp_fractional_scale_v1_listener scaleListener{
      .preferred_scale = [](void* self, wp_fractional_scale_v1*, std::uint32_t parts) {
        at(self).preferredScale_ = parts / 120.0;  // as the protocol counts
      }};
  fractionalScale_.reset(
      wp_fractional_scale_manager_v1_get_fractional_scale(globals.fractionalScales.get(), surface_.get()));
  wp_fractional_scale_v1_add_listener(fractionalScale_.get(), &scaleListener, this);
}

void TileSurface::configured() {
  isConfigured_ = true;
  if (!buffers_.empty()) wl_surface_commit(surface_.get());
}

bool TileSurface::canShow() {
  buffers_.remove_if([](const Buffer& buffer) { return buffer.isReleased(); });
  return isConfigured_ && !isClosed_ && buffers_.size() < buffersInFlight;
}

void TileSurface::show(std::shared_ptr<const Picture> picture, const Fit& fit) {
  buffers_.emplace_back(globals_.memory.get(), std::move(picture), fit.pixels, anchor_);
  wl_surface_attach(surface_.get(), buffers_.back().get(), 0, 0);
  wl_surface_damage_buffer(surface_.get(), 0, 0, fit.pixels.width, fit.pixels.height);
  if (viewport_)
    wp_viewport_set_destination(viewport_.get(), fit.points.width, fit.points.height);
  else
    wl_surface_set_buffer_scale(surface_.get(), fit.pixels.width / fit.points.width);
  resize(fit.points);
  wl_surface_commit(surface_.get());
}

}  // namespace desktop::wayland
