#include "wayland/tile_surface.hpp"

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>
#include <utility>
#include <vector>

namespace desktop::wayland {
namespace {

/// `picture`, or a copy of it that is transparent on the sides away from `anchor`.
std::shared_ptr<const Picture> grow(std::shared_ptr<const Picture> picture, int width, int height,
                                    const Anchor& anchor) {
  if (width == picture->width && height == picture->height) return picture;
  auto larger = std::make_shared<Picture>(
      Picture{foundation::FileDescriptor{memfd_create("tarno-tile", MFD_CLOEXEC)}, width, height, 4 * width});
  const Area area = place(picture->width, picture->height, {0, 0, width, height}, anchor, 0);
  const auto from = pixelsOf(*picture);
  std::vector<std::uint32_t> pixels(larger->size() / 4);
  for (int y = 0; y < area.height; ++y)
    std::copy_n(from.begin() + y * picture->stride / 4, area.width,
                pixels.begin() + (area.y + y) * width + area.x);
  if (write(larger->memory.get(), pixels.data(), larger->size()) != static_cast<ssize_t>(larger->size()))
    throw std::system_error{errno, std::generic_category(), "cannot make a buffer"};
  return larger;
}

}  // namespace

int surfaceSide(int pixels, double scale) {
  constexpr double tolerance = 0.01;  // pixels
  const int first = static_cast<int>(std::ceil((pixels - tolerance) / scale));
  for (int points = first; points <= first + 120; ++points)
    if (std::abs(points * scale - std::round(points * scale)) < tolerance) return points;
  return first;
}

TileSurface::TileSurface(const Display& display, const Options& options, wl_output* output)
    : display_(display),
      options_(options),
      surface_(wl_compositor_create_surface(display.compositor.get())),
      viewport_(wp_viewporter_get_viewport(display.viewports.get(), surface_.get())),
      output_(output) {
  if (display.fractionalScales) {
    static constexpr wp_fractional_scale_v1_listener scaleListener{store<&TileSurface::scaleParts_>};
    fractionalScale_.reset(
        wp_fractional_scale_manager_v1_get_fractional_scale(display.fractionalScales.get(), surface_.get()));
    wp_fractional_scale_v1_add_listener(fractionalScale_.get(), &scaleListener, this);
  }
  if (output)
    becomeLayer(output);
  else
    becomeWindow();
  wl_surface_commit(surface_.get());
}

void TileSurface::becomeLayer(wl_output* output) {
  const auto layer =
      options_.layer == Layer::above ? ZWLR_LAYER_SHELL_V1_LAYER_TOP : ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM;
  // KWin would take what says "desktop" for part of the desktop: it stays on "show desktop", but the next
  // click on another part of the desktop, the wallpaper, covers it for good. See ShowDesktopWatch.
  layer_.reset(zwlr_layer_shell_v1_get_layer_surface(display_.layers.get(), surface_.get(), output, layer,
                                                     "tarno-desktop"));
  static constexpr zwlr_layer_surface_v1_listener listener{
      .configure = [](void* self, auto*, std::uint32_t serial, auto,
                      auto) { static_cast<TileSurface*>(self)->configured(serial); },
      .closed = call<&TileSurface::close>};
  zwlr_layer_surface_v1_add_listener(layer_.get(), &listener, this);

  const auto edge = [](double at, unsigned first, unsigned last) {
    return at == 0 ? first : at == 1 ? last : 0;
  };
  zwlr_layer_surface_v1_set_anchor(
      layer_.get(),
      edge(options_.anchor.x, ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT, ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT) |
          edge(options_.anchor.y, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP, ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM));
  const int margin = options_.margin;  // counts at the edges that are anchored to
  zwlr_layer_surface_v1_set_margin(layer_.get(), margin, margin, margin, margin);
  const Proxy<wl_region> nothing{wl_compositor_create_region(display_.compositor.get())};
  wl_surface_set_input_region(surface_.get(), nothing.get());
  zwlr_layer_surface_v1_set_size(layer_.get(), 1, 1);  // until the first picture
}

void TileSurface::becomeWindow() {
  static constexpr wl_surface_listener surfaceListener{.enter = store<&TileSurface::output_>,
                                                       .leave = ignore};
  wl_surface_add_listener(surface_.get(), &surfaceListener, this);
  static constexpr xdg_surface_listener listener{.configure = call<&TileSurface::configured>};
  window_.reset(xdg_wm_base_get_xdg_surface(display_.windows.get(), surface_.get()));
  xdg_surface_add_listener(window_.get(), &listener, this);

  static constexpr xdg_toplevel_listener toplevelListener{.configure = ignore,
                                                          .close = call<&TileSurface::close>};
  toplevel_.reset(xdg_surface_get_toplevel(window_.get()));
  xdg_toplevel_add_listener(toplevel_.get(), &toplevelListener, this);
  xdg_toplevel_set_app_id(toplevel_.get(), "tarno-desktop");

  if (display_.seat == 0) return;
  static constexpr wl_seat_listener seatListener{.capabilities = call<&TileSurface::followPointer>};
  seat_.reset(
      static_cast<wl_seat*>(wl_registry_bind(display_.registry.get(), display_.seat, &wl_seat_interface, 1)));
  wl_seat_add_listener(seat_.get(), &seatListener, this);
}

void TileSurface::followPointer(std::uint32_t capabilities) {
  static constexpr wl_pointer_listener listener{
      .enter = ignore, .leave = ignore, .motion = ignore, .button = call<&TileSurface::drag>, .axis = ignore};
  pointer_.reset();
  if ((capabilities & WL_SEAT_CAPABILITY_POINTER) == 0) return;
  pointer_.reset(wl_seat_get_pointer(seat_.get()));
  wl_pointer_add_listener(pointer_.get(), &listener, this);
}

void TileSurface::drag(std::uint32_t serial, std::uint32_t, std::uint32_t button, std::uint32_t state) {
  if (button == BTN_LEFT && state == WL_POINTER_BUTTON_STATE_PRESSED)
    xdg_toplevel_move(toplevel_.get(), seat_.get(), serial);
}

/// A commit takes what was configured; the first picture's takes the first.
void TileSurface::configured(std::uint32_t serial) {
  if (layer_)
    zwlr_layer_surface_v1_ack_configure(layer_.get(), serial);
  else
    xdg_surface_ack_configure(window_.get(), serial);
  if (std::exchange(isConfigured_, true)) wl_surface_commit(surface_.get());
}

void TileSurface::show(const std::shared_ptr<const Picture>& picture, double scale,
                       const std::string& title) {
  buffers_.remove_if([](const Buffer& buffer) { return buffer.isReleased; });
  const bool isReady = isConfigured_ && !isClosed_ && buffers_.size() < 3;  // a compositor may be asleep
  if (!isReady || (picture_ == picture && scale_ == scale)) return;
  picture_ = picture;
  scale_ = scale;
  const auto pixels = [scale](int points) { return static_cast<int>(std::lround(points * scale)); };
  const int width = surfaceSide(picture->width, scale), height = surfaceSide(picture->height, scale);
  attach(grow(picture, pixels(width), pixels(height), options_.anchor));
  wp_viewport_set_destination(viewport_.get(), width, height);
  if (layer_) {
    zwlr_layer_surface_v1_set_size(layer_.get(), static_cast<unsigned>(width), static_cast<unsigned>(height));
  } else {  // of one size, which tiling compositors leave alone
    xdg_toplevel_set_min_size(toplevel_.get(), width, height);
    xdg_toplevel_set_max_size(toplevel_.get(), width, height);
    xdg_toplevel_set_title(toplevel_.get(), title.c_str());
  }
  wl_surface_commit(surface_.get());
}

void TileSurface::attach(const std::shared_ptr<const Picture>& picture) {
  const auto& [memory, width, height, stride, scale] = *picture;
  const Proxy<wl_shm_pool> pool{
      wl_shm_create_pool(display_.memory.get(), memory.get(), static_cast<int>(picture->size()))};
  wl_buffer* const proxy =
      wl_shm_pool_create_buffer(pool.get(), 0, width, height, stride, WL_SHM_FORMAT_ARGB8888);
  static constexpr wl_buffer_listener listener{
      .release = [](void* buffer, auto*) { static_cast<Buffer*>(buffer)->isReleased = true; }};
  wl_buffer_add_listener(proxy, &listener, &buffers_.emplace_back(Buffer{picture, Proxy<wl_buffer>{proxy}}));
  wl_surface_attach(surface_.get(), proxy, 0, 0);
  wl_surface_damage_buffer(surface_.get(), 0, 0, width, height);
}

void TileSurface::raise(bool isRaised) {
  if (std::exchange(isRaised_, isRaised) == isRaised) return;
  zwlr_layer_surface_v1_set_layer(
      layer_.get(), isRaised ? ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY : ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM);
  wl_surface_commit(surface_.get());
}

}  // namespace desktop::wayland
