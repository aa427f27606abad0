#include "tarno/wayland/wayland_surface.hpp"

#include <fcntl.h>
#include <linux/input-event-codes.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>

#include "tarno/wayland/display.hpp"
#include "tarno/wayland/show_desktop.hpp"

namespace desktop {
namespace {

using namespace wayland;
using tarno::Handle;

/// The minimum time between two surfaces. A compositor may close each new surface while its monitors change.
constexpr std::chrono::milliseconds surfaceInterval{200};

/// The objects of the tile on the display: a layer surface, which ignores clicks, or a window without a
/// frame, which the pointer can drag.
struct Tile {
  std::vector<Handle<wl_buffer, wl_buffer_destroy>> buffers;  // those that the compositor may still read
  Handle<wl_surface, wl_surface_destroy> surface;
  Handle<wp_viewport, wp_viewport_destroy> viewport;
  Handle<wp_fractional_scale_v1, wp_fractional_scale_v1_destroy> fractionalScale;
  Handle<zwlr_layer_surface_v1, zwlr_layer_surface_v1_destroy> layer;  // either this or the next two exist
  Handle<xdg_surface, xdg_surface_destroy> window;
  Handle<xdg_toplevel, xdg_toplevel_destroy> toplevel;
  std::vector<wl_output*> outputs;  // the output of the layer, or those that the window entered, newest last
  std::uint32_t scaleParts = 0;     // the preferred scale in the unit of the protocol; 0 if unknown
  bool isConfigured = false, isClosed = false, isRaised = false;
  std::shared_ptr<const Picture> picture;  // the current picture
  double scale = 0;                        // the pixels per point at which it is shown

  void enter(wl_output* output) {
    std::erase(outputs, output);
    outputs.push_back(output);
  }
  /// Forgets an output, but keeps the last one: a window on no output, such as a hidden workspace, keeps its
  /// scale.
  void leave(wl_output* output) {
    if (outputs.size() > 1) std::erase(outputs, output);
  }
};

/// Returns `picture`, or a copy enlarged by transparent pixels on the sides away from `anchor`.
std::shared_ptr<const Picture> grow(std::shared_ptr<const Picture> picture, int width, int height,
                                    const Anchor& anchor) {
  if (width == picture->width && height == picture->height) return picture;
  const PictureLayout layout{width, height, 4 * width};
  const Area area = place(picture->width, picture->height, {0, 0, width, height}, anchor, {});
  std::vector<std::uint32_t> pixels(layout.size() / 4);
  for (int y = 0; y < area.height; ++y)
    std::ranges::copy(picture->row(y), pixels.begin() + (area.y + y) * width + area.x);
  auto memory = makePictureMemory();
  if (write(memory.get(), pixels.data(), layout.size()) != static_cast<ssize_t>(layout.size()) ||
      fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK) != 0)
    throw std::system_error{errno, std::generic_category(), "cannot create a buffer"};
  return std::make_shared<Picture>(std::move(memory), layout);
}

const char* kindFor(const Options& options, bool isPlain) {
  if (isPlain) return "a plain Wayland window";
  return options.layer == Layer::above ? "a layer-shell surface in the top layer"
                                       : "a layer-shell surface in the bottom layer";
}

class WaylandSurface final : public Surface {
 public:
  WaylandSurface(const Options& options, bool isPlain);

  /// Returns false if there is no layer-shell and the options do not ask for a plain window.
  bool isPossible() const { return isPlain_ || display_.layers; }

  Wait prepare() override;
  void dispatch(short) override { display_.dispatch(); }

 private:
  void followMonitors();
  void make();
  void makeLayer();
  void makeWindow();
  void followPointer();
  void drag(std::uint32_t serial, std::uint32_t time, std::uint32_t button, std::uint32_t state);
  void configured(std::uint32_t serial);
  void close() { tile_->isClosed = true; }
  void draw();
  void attach(const Picture& picture);
  void raise(bool isRaised);

  const bool isPlain_;
  Display display_;
  std::optional<ShowDesktop> showDesktop_;
  wl_output* output_ = nullptr;  // the monitor
  double displayScale_ = 1;      // the scale of the display for the tile, in pixels per point
  Global<wl_pointer> pointer_;   // for dragging a window
  std::optional<Tile> tile_;
  Clock::time_point notBefore_;  // the earliest time of the next surface
};

WaylandSurface::WaylandSurface(const Options& options, bool isPlain)
    : Surface(options, kindFor(options, isPlain)), isPlain_(isPlain) {
  if (isPlain_) choice_ = MonitorChoice{std::nullopt};  // the compositor chooses where a window is
  if (!isPlain_ && options.layer == Layer::desktop && display_.isKWin) showDesktop_.emplace();
  followMonitors();
}

/// Applies what the compositor and the owner have changed since the last call.
program::EventSource::Wait WaylandSurface::prepare() {
  followMonitors();
  if (tile_ && !isPlain_ && (tile_->isClosed || tile_->outputs.back() != output_)) tile_.reset();
  const bool isMissing = !tile_ && picture_ && output_;
  if (isMissing && Clock::now() >= notBefore_) make();
  state_.isClosed = isPlain_ && tile_ && tile_->isClosed;
  if (isPlain_) followPointer();
  const bool isDesktopShown = showDesktop_ && showDesktop_->isShown();
  if (tile_) {
    draw();
    raise(isDesktopShown);
  }
  if (picture_) state_.extents = {0, 0, picture_->width, picture_->height};
  wl_display_flush(display_.connection.get());
  return {{{display_.descriptor(), POLLIN, 0}, {showDesktop_ ? showDesktop_->descriptor() : -1, POLLIN, 0}},
          isMissing ? notBefore_ : Clock::time_point::max()};
}

/// Updates the monitors and finds the one of the tile: the chosen one for a layer surface, or the one that
/// the window entered last.
void WaylandSurface::followMonitors() {
  auto& [monitors, monitor, extents, isClosed, needsPicture] = state_;
  std::vector<wl_output*> outputs;  // one for each of `monitors`
  monitors.clear();
  for (const Output& output : display_.outputs) {
    if (!output.info) continue;
    monitors.push_back(*output.info);
    outputs.push_back(output.proxy.get());
  }
  const Monitor* chosen = choice_.among(monitors);
  if (isPlain_ && tile_)
    for (wl_output* const entered : tile_->outputs)
      if (const auto at = std::ranges::find(outputs, entered); at != outputs.end())
        chosen = &monitors[static_cast<std::size_t>(at - outputs.begin())];
  output_ = chosen ? outputs[static_cast<std::size_t>(chosen - monitors.data())] : nullptr;
  monitor = chosen ? std::optional{*chosen} : std::nullopt;
  if (!monitor) return;
  displayScale_ = tile_ && tile_->scaleParts > 0 ? tile_->scaleParts / 120.0 : monitor->scale;
  monitor->scale = options_.scale.value_or(displayScale_);
}

void WaylandSurface::make() {
  notBefore_ = Clock::now() + surfaceInterval;
  Tile& tile = tile_.emplace();
  tile.surface.reset(wl_compositor_create_surface(display_.compositor.get()));
  auto* const surface = tile.surface.get();
  tile.viewport.reset(wp_viewporter_get_viewport(display_.viewports.get(), surface));
  if (auto* const scales = display_.fractionalScales.get()) {
    static constexpr wp_fractional_scale_v1_listener listener{store<&Tile::scaleParts>};
    tile.fractionalScale.reset(wp_fractional_scale_manager_v1_get_fractional_scale(scales, surface));
    wp_fractional_scale_v1_add_listener(tile.fractionalScale.get(), &listener, &tile);
  }
  isPlain_ ? makeWindow() : makeLayer();
  wl_surface_commit(surface);
}

void WaylandSurface::makeLayer() {
  tile_->outputs = {output_};
  // KWin treats a surface named "desktop" as a part of the desktop. It stays visible when the desktop is
  // shown, but a click on the wallpaper covers it for good. So the name is another, and the tile is raised
  // while the desktop is shown.
  tile_->layer.reset(zwlr_layer_shell_v1_get_layer_surface(
      display_.layers.get(), tile_->surface.get(), output_,
      options_.layer == Layer::above ? ZWLR_LAYER_SHELL_V1_LAYER_TOP : ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM,
      "tarno-desktop"));
  auto* const layer = tile_->layer.get();
  static constexpr zwlr_layer_surface_v1_listener listener{
      .configure = [](void* self, auto*, std::uint32_t serial, auto,
                      auto) { static_cast<WaylandSurface*>(self)->configured(serial); },
      .closed = call<&WaylandSurface::close>};
  zwlr_layer_surface_v1_add_listener(layer, &listener, this);

  const auto edge = [](double at, unsigned first, unsigned last) {
    return at == 0 ? first : at == 1 ? last : 0;
  };
  const auto [x, y] = options_.anchor;
  zwlr_layer_surface_v1_set_anchor(
      layer, edge(x, ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT, ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT) |
                 edge(y, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP, ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM));
  const auto& [top, right, bottom, left] = options_.margin;  // compositors apply it to anchored edges only
  zwlr_layer_surface_v1_set_margin(layer, top, right, bottom, left);
  const Handle<wl_region, wl_region_destroy> nothing{wl_compositor_create_region(display_.compositor.get())};
  wl_surface_set_input_region(tile_->surface.get(), nothing.get());
  zwlr_layer_surface_v1_set_size(layer, 1, 1);  // the size until the first picture
}

void WaylandSurface::makeWindow() {
  static constexpr wl_surface_listener surfaceListener{.enter = call<&Tile::enter>,
                                                       .leave = call<&Tile::leave>};
  wl_surface_add_listener(tile_->surface.get(), &surfaceListener, &*tile_);
  static constexpr xdg_surface_listener listener{.configure = call<&WaylandSurface::configured>};
  tile_->window.reset(xdg_wm_base_get_xdg_surface(display_.windows.get(), tile_->surface.get()));
  xdg_surface_add_listener(tile_->window.get(), &listener, this);
  static constexpr xdg_toplevel_listener toplevelListener{.configure = ignore,
                                                          .close = call<&WaylandSurface::close>};
  tile_->toplevel.reset(xdg_surface_get_toplevel(tile_->window.get()));
  xdg_toplevel_add_listener(tile_->toplevel.get(), &toplevelListener, this);
  xdg_toplevel_set_app_id(tile_->toplevel.get(), "tarno-desktop");
}

void WaylandSurface::followPointer() {
  static constexpr wl_pointer_listener listener{.enter = ignore,
                                                .leave = ignore,
                                                .motion = ignore,
                                                .button = call<&WaylandSurface::drag>,
                                                .axis = ignore};
  const bool hasPointer = (display_.seatCapabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
  if (hasPointer == (pointer_ != nullptr)) return;
  pointer_.reset(hasPointer ? wl_seat_get_pointer(display_.seat.get()) : nullptr);
  if (pointer_) wl_pointer_add_listener(pointer_.get(), &listener, this);
}

void WaylandSurface::drag(std::uint32_t serial, std::uint32_t, std::uint32_t button, std::uint32_t state) {
  if (tile_ && button == BTN_LEFT && state == WL_POINTER_BUTTON_STATE_PRESSED)
    xdg_toplevel_move(tile_->toplevel.get(), display_.seat.get(), serial);
}

/// Acknowledges a configure event. The next commit makes that effective; after the first event, it is the
/// commit of the first picture.
void WaylandSurface::configured(std::uint32_t serial) {
  if (isPlain_)
    xdg_surface_ack_configure(tile_->window.get(), serial);
  else
    zwlr_layer_surface_v1_ack_configure(tile_->layer.get(), serial);
  if (std::exchange(tile_->isConfigured, true)) wl_surface_commit(tile_->surface.get());
}

/// Shows the picture if it is new and the compositor is ready.
void WaylandSurface::draw() {
  Tile& tile = *tile_;
  const double scale = state_.monitor ? picture_->scale * displayScale_ / state_.monitor->scale : 0;
  const bool isReady = tile.isConfigured && !tile.isClosed &&
                       tile.buffers.size() < 3;  // while the monitor sleeps, the compositor releases none
  if (!isReady || scale == 0 || (tile.picture == picture_ && tile.scale == scale)) return;
  tile.picture = picture_;
  tile.scale = scale;
  const auto pixels = [scale](int points) { return static_cast<int>(std::lround(points * scale)); };
  const int width = surfaceSide(picture_->width, scale), height = surfaceSide(picture_->height, scale);
  attach(*grow(picture_, pixels(width), pixels(height), options_.anchor));
  wp_viewport_set_destination(tile.viewport.get(), width, height);
  if (isPlain_) {  // tiling compositors let a window of fixed size float
    xdg_toplevel_set_min_size(tile.toplevel.get(), width, height);
    xdg_toplevel_set_max_size(tile.toplevel.get(), width, height);
    xdg_toplevel_set_title(tile.toplevel.get(), title_.c_str());
  } else {
    zwlr_layer_surface_v1_set_size(tile.layer.get(), static_cast<unsigned>(width),
                                   static_cast<unsigned>(height));
  }
  wl_surface_commit(tile.surface.get());
}

/// Creates a buffer for a picture, which is kept until the compositor releases the buffer.
void WaylandSurface::attach(const Picture& picture) {
  const Handle<wl_shm_pool, wl_shm_pool_destroy> pool{
      wl_shm_create_pool(display_.memory.get(), picture.descriptor(), static_cast<int>(picture.size()))};
  wl_buffer* const buffer = wl_shm_pool_create_buffer(pool.get(), 0, picture.width, picture.height,
                                                      picture.stride, WL_SHM_FORMAT_ARGB8888);
  tile_->buffers.emplace_back(buffer);
  static constexpr wl_buffer_listener listener{.release = [](void* tile, wl_buffer* released) {
    std::erase_if(static_cast<Tile*>(tile)->buffers, [=](auto& lent) { return lent.get() == released; });
  }};
  wl_buffer_add_listener(buffer, &listener, &*tile_);
  wl_surface_attach(tile_->surface.get(), buffer, 0, 0);
  wl_surface_damage_buffer(tile_->surface.get(), 0, 0, picture.width, picture.height);
}

/// Raises the tile above everything else, or puts it back into the bottom layer.
void WaylandSurface::raise(bool isRaised) {
  if (std::exchange(tile_->isRaised, isRaised) == isRaised) return;
  zwlr_layer_surface_v1_set_layer(
      tile_->layer.get(), isRaised ? ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY : ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM);
  wl_surface_commit(tile_->surface.get());
}

}  // namespace

std::unique_ptr<Surface> openWaylandSurface(const Options& options) {
  const bool isPlain = options.plainWindow || options.layer == Layer::normal;
  auto surface = std::make_unique<WaylandSurface>(options, isPlain);
  if (!surface->isPossible()) return nullptr;
  return surface;
}

}  // namespace desktop
