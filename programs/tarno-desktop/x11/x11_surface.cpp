#include "x11/x11_surface.hpp"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "x11/screen.hpp"
#include "x11/tile_window.hpp"

namespace desktop {
namespace {

using namespace x11;

/// These window managers keep an unmanaged window above all others, or leave it behind what they raise to
/// show the desktop; and they let the pointer through a managed one. The others put managed windows into
/// frames, which catch it.
bool isManaged(Layer layer, std::string_view windowManager) {
  constexpr std::array<std::string_view, 4> frameless{"GNOME Shell", "KWin", "Metacity", "Mutter"};
  const auto isPartOfIt = [&](auto name) { return windowManager.find(name) != std::string_view::npos; };
  return layer == Layer::normal || std::ranges::any_of(frameless, isPartOfIt);
}

class X11Surface final : public Surface {
 public:
  X11Surface(const Options& options, SurfaceOwner owner);

  Wait prepare() override;
  void dispatch(short events) override;
  std::optional<double> scale() const override {
    return monitor_ ? std::optional{monitor_->scale} : std::nullopt;
  }
  void show(std::shared_ptr<const Picture> picture) override {
    picture_ = std::move(picture);
    fit();
  }
  void setTitle(const std::string& title) override { title_ = title; }
  Area extents() const override { return extents_; }
  std::string description() const override;
  std::vector<MonitorInfo> monitors() const override { return screen_.monitors; }

 private:
  void handle(const xcb_generic_event_t& event);
  void follow();
  void fit();
  void restack();
  void moved();

  const Options options_;
  const SurfaceOwner owner_;
  const Connection connection_;
  Screen screen_;
  std::optional<MonitorInfo> monitor_;  // that the tile belongs to
  bool wasThere_ = false;               // the monitor that the options name
  std::shared_ptr<const Picture> picture_;
  std::string title_;
  std::optional<TileWindow> window_;
  Area extents_;
  int looks_ = 1;  // that are still to be taken
  Clock::time_point nextLook_;
};

X11Surface::X11Surface(const Options& options, SurfaceOwner owner)
    : options_(options), owner_(std::move(owner)) {
  xcb_randr_select_input(connection_, connection_.root(), XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE);
  for (const auto* const selection : {"_NET_WM_CM_S0", "_XSETTINGS_S0"})
    xcb_xfixes_select_selection_input(connection_, connection_.root(), connection_.atom(selection),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  follow();
}

std::string X11Surface::description() const {
  constexpr std::array<const char*, 3> places{"of the desktop", "among others", "above others"};
  const auto wanted = options_.monitor ? "the monitor " + *options_.monitor : "a monitor";
  return std::string{"as an X11 window "} + places[static_cast<std::size_t>(options_.layer)] +
         (monitor_ ? " on " + monitor_->connector : " as soon as there is " + wanted);
}

EventSource::Wait X11Surface::prepare() {
  const auto scaleBefore = scale();
  for (bool isDue = true; isDue;) {  // events arrive beside the answers to what a look asks
    while (const std::shared_ptr<xcb_generic_event_t> event{xcb_poll_for_event(connection_), std::free})
      handle(*event);
    isDue = looks_ > 0 && nextLook_ <= Clock::now();
    if (isDue) follow();
  }
  if (scale() != scaleBefore) owner_.scaleChanged();
  xcb_flush(connection_);
  if (xcb_connection_has_error(connection_) != 0) return {-1, 0, Clock::now()};  // for dispatch() to tell
  return {xcb_get_file_descriptor(connection_), POLLIN, looks_ > 0 ? std::optional{nextLook_} : std::nullopt};
}

void X11Surface::dispatch(short) {
  if (xcb_connection_has_error(connection_) == 0) return;
  const Connection another;  // throws where the whole display went away
  owner_.closed();           // somebody ended the tile's connection: that is how its window is closed
}

void X11Surface::handle(const xcb_generic_event_t& event) {
  const void* const data = &event;
  const auto* const notify = static_cast<const xcb_configure_notify_event_t*>(data);  // or another like it
  const int type = event.response_type & 0x7f;
  const bool isOwn = window_ && notify->window == window_->id();
  if (type == XCB_DESTROY_NOTIFY && isOwn) return owner_.closed();
  if (type == XCB_CONFIGURE_NOTIFY && isOwn) return moved();
  if (type == XCB_CONFIGURE_NOTIFY && notify->event != notify->window) return;  // any window on the screen
  if (type == 0) return;  // an error, about a window that is gone
  if (type == XCB_BUTTON_PRESS && window_) window_->drag(*static_cast<const xcb_button_press_event_t*>(data));
  looks_ = 2;  // one at once, and one for what follows without being told
}

/// A window in a frame is told its place in the frame, so the display is asked where it is on the screen.
void X11Surface::moved() {
  const auto at = connection_.ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
      window_->id(), connection_.root(), std::int16_t{}, std::int16_t{})();
  const auto now = at ? Area{at->dst_x, at->dst_y, picture_->width, picture_->height} : extents_;
  if (std::exchange(extents_, now) != now) owner_.moved();
}

/// Looks at the screen, and follows what has changed.
void X11Surface::follow() {
  --looks_;
  nextLook_ = Clock::now() + std::chrono::milliseconds{100};
  screen_ = readScreen(connection_, options_.scale);
  // A monitor that is named but absent is waited for; while one that was there is away, the primary serves.
  auto found = std::ranges::find(screen_.monitors, options_.monitor.value_or(""), &MonitorInfo::connector);
  wasThere_ = wasThere_ || found != screen_.monitors.end() || !options_.monitor;
  if (found == screen_.monitors.end() && wasThere_)
    found = std::ranges::max_element(screen_.monitors, {}, &MonitorInfo::isPrimary);  // or the first
  monitor_ = found == screen_.monitors.end() ? std::nullopt : std::optional{*found};
  fit();
  if (window_) restack();
}

/// Shows the picture in its place, in a window as the window manager needs it.
void X11Surface::fit() {
  if (!monitor_ || !picture_) return window_.reset();
  const bool managed = isManaged(options_.layer, screen_.windowManager);
  if (!window_ || window_->isManaged() != managed) window_.emplace(connection_, options_.layer, managed);
  window_->show(picture_, title_, screen_.isComposited);
  const auto margin = static_cast<int>(std::lround(options_.margin * monitor_->scale));
  const auto room = freeArea(monitor_->area, screen_);
  window_->place(place(picture_->width, picture_->height, room, options_.anchor, margin));
}

/// Puts the tile back to its place in the stack: below all other windows, but directly above the desktop of
/// a file manager, which is a window too; or, in the layer above, over all that do not fill the screen.
void X11Surface::restack() {
  if (window_->isManaged() && options_.layer != Layer::desktop) return;  // that is up to the window manager
  xcb_window_t highest = XCB_NONE;
  bool isAbove = true;
  for (const auto& window : screen_.windows) {
    if (window.id == window_->id()) isAbove = true;
    // A smaller one is another tile, which wants to be there too.
    const bool isLarger = window.area.width > picture_->width && window.area.height > picture_->height;
    if (options_.layer == Layer::desktop ? !window.isDesktop || !isLarger
                                         : window.isDesktop || window.isOverlay || window.isFullScreen)
      continue;
    highest = window.top;
    if (window.isDesktop) connection_.select(highest, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    isAbove = false;
  }
  if (!window_->isManaged() || !isAbove) window_->stack(highest);
}

}  // namespace

std::unique_ptr<Surface> openX11Surface(const Options& options, SurfaceOwner owner) {
  return std::make_unique<X11Surface>(options, std::move(owner));
}

}  // namespace desktop
