#include "tarno/x11/x11_surface.hpp"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "tarno/common/failure.hpp"
#include "tarno/x11/screen.hpp"
#include "tarno/x11/tile_window.hpp"

namespace desktop {
namespace {

using namespace x11;

constexpr std::array kinds{"an X11 desktop window", "an ordinary X11 window",
                           "an X11 window above others"};  // indexed by layer

/// These window managers keep an unmanaged window above all others, or hide it when they show the desktop,
/// and they let clicks pass through a managed one. All others put managed windows into frames, which catch
/// clicks. Marco, which also has "Metacity" in its name, restacks no managed window.
bool isManaged(Layer layer, const Screen& screen, xcb_atom_t restackRequest) {
  constexpr std::array<std::string_view, 4> frameless{"GNOME Shell", "KWin", "Metacity", "Mutter"};
  const auto isPartOfIt = [&](auto name) { return screen.windowManager.find(name) != std::string::npos; };
  return layer == Layer::normal || isPartOfIt("Enlightenment") ||
         (std::ranges::any_of(frameless, isPartOfIt) && screen.supports(restackRequest));
}

class X11Surface final : public Surface {
 public:
  explicit X11Surface(const Options& options);

  Wait prepare() override;
  void dispatch(short events) override;

 private:
  bool isOwn(xcb_window_t window) const { return window_ && window == window_->id; }
  void handle(const xcb_generic_event_t& event);
  bool matters(xcb_atom_t property) const;
  bool isMisplaced(const xcb_configure_notify_event_t& notify) const;
  void findExtents();
  void look();
  void fit();
  void restack();

  const Connection connection_;
  Screen screen_;
  std::optional<TileWindow> window_;
  int looks_ = 1;  // how many looks at the screen are still due
  Clock::time_point nextLook_;
};

X11Surface::X11Surface(const Options& options)
    : Surface(options, kinds[static_cast<std::size_t>(options.layer)]) {
  xcb_randr_select_input(connection_, connection_.root, XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE);
  for (const auto selection : {connection_.ewmh._NET_WM_CM_Sn[0], connection_.xsettingsOwner})
    xcb_xfixes_select_selection_input(connection_, connection_.root, selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  look();
}

program::EventSource::Wait X11Surface::prepare() {
  for (bool isDue = true; isDue;) {  // events also arrive while a look waits for answers
    while (const tarno::Handle<xcb_generic_event_t, std::free> event{xcb_poll_for_event(connection_)})
      handle(*event);
    isDue = looks_ > 0 && nextLook_ <= Clock::now();
    if (isDue) look();
  }
  fit();
  xcb_flush(connection_);
  if (xcb_connection_has_error(connection_) != 0) return {.until = Clock::now()};  // dispatch() reports it
  return {{{xcb_get_file_descriptor(connection_), POLLIN, 0}},
          looks_ > 0 ? nextLook_ : Clock::time_point::max()};
}

void X11Surface::dispatch(short) {
  const int error = xcb_connection_has_error(connection_);
  if (error == 0) return;
  if (error != XCB_CONN_ERROR)
    throw program::Failure{
        EX_PROTOCOL, "the connection to the X11 display broke: xcb reports error " + std::to_string(error)};
  const Connection another;  // throws if the whole display went away
  program::complain("the X11 display closed the connection of the tile");  // somebody killed its window
  state_.isClosed = true;
}

void X11Surface::handle(const xcb_generic_event_t& event) {
  const void* const data = &event;
  switch (event.response_type & 0x7f) {
    case 0: return;  // an error, about a window that is gone
    case XCB_BUTTON_PRESS:
      if (window_)
        window_->drag(*static_cast<const xcb_button_press_event_t*>(data),
                      screen_.supports(connection_.ewmh._NET_WM_MOVERESIZE));
      return;
    case XCB_MOTION_NOTIFY:
      if (window_) window_->follow(*static_cast<const xcb_motion_notify_event_t*>(data));
      return;
    case XCB_DESTROY_NOTIFY:
      state_.isClosed |= isOwn(static_cast<const xcb_destroy_notify_event_t*>(data)->window);
      return;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& notify = *static_cast<const xcb_configure_notify_event_t*>(data);
      if (isOwn(notify.window)) return findExtents();
      if (notify.window != connection_.root && !isMisplaced(notify)) return;
      break;
    }
    case XCB_PROPERTY_NOTIFY:
      if (!matters(static_cast<const xcb_property_notify_event_t*>(data)->atom)) return;
      break;
    case XCB_CREATE_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_GRAVITY_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
    case XCB_MAPPING_NOTIFY: return;  // of windows that are not shown yet, and of keys
    default: break;
  }
  looks_ = 2;  // one now, and one later for what follows without an event
}

/// Whether another top-level window is now on the wrong side of the tile. It is directly above
/// `above_sibling`, whose place in the stack is known from the last look.
bool X11Surface::isMisplaced(const xcb_configure_notify_event_t& notify) const {
  if (!window_ || window_->isManaged || notify.event != connection_.root) return false;
  const auto has = [](xcb_window_t id) {
    return [id](const Window& window) { return std::ranges::count(window.ids, id) != 0; };
  };
  const auto tile = std::ranges::find_if(screen_.windows, has(window_->id));
  const bool isAbove = std::any_of(tile, screen_.windows.end(), has(notify.above_sibling));
  return isAbove == (options_.layer == Layer::above);
}

/// Whether a property, of the root or of another window, can change the place of the tile.
bool X11Surface::matters(xcb_atom_t property) const {
  const auto& ewmh = connection_.ewmh;
  const auto wanted = {ewmh._NET_SUPPORTING_WM_CHECK,
                       ewmh._NET_SUPPORTED,
                       ewmh._NET_CLIENT_LIST,
                       ewmh._NET_CLIENT_LIST_STACKING,
                       ewmh._NET_ACTIVE_WINDOW,
                       ewmh._NET_CURRENT_DESKTOP,
                       ewmh._NET_SHOWING_DESKTOP,
                       ewmh._NET_DESKTOP_GEOMETRY,
                       ewmh._NET_WORKAREA,
                       ewmh._NET_WM_STATE,
                       ewmh._NET_WM_STRUT,
                       ewmh._NET_WM_STRUT_PARTIAL,
                       ewmh._NET_WM_WINDOW_TYPE,
                       connection_.monitorWorkAreas,
                       connection_.xsettings,
                       xcb_atom_t{XCB_ATOM_RESOURCE_MANAGER}};
  return std::ranges::count(wanted, property) != 0;
}

/// The event of a window in a frame has its position in the frame, so this asks for its position on the
/// screen.
void X11Surface::findExtents() {
  const auto cookie = xcb_translate_coordinates(connection_, window_->id, connection_.root, 0, 0);
  const auto at = connection_.answer<xcb_translate_coordinates_reply>(cookie);
  if (at) state_.extents = {at->dst_x, at->dst_y, layout_.width, layout_.height};
}

/// Reads the state of the screen and adapts the tile to it.
void X11Surface::look() {
  --looks_;
  nextLook_ = Clock::now() + std::chrono::milliseconds{100};
  screen_ = readScreen(connection_, options_.scale);
  state_.monitors = screen_.monitors;
  const Monitor* const chosen = choice_.among(state_.monitors);
  state_.monitor = chosen ? std::optional{*chosen} : std::nullopt;
  fit();
  if (window_) restack();
}

/// Shows the picture in its place, in a managed or unmanaged window as the window manager requires. Releases
/// a picture that was sent, because the X server has a copy of it.
void X11Surface::fit() {
  if (!state_.monitor || layout_.width == 0) return window_.reset();
  const bool managed = isManaged(options_.layer, screen_, connection_.ewmh._NET_RESTACK_WINDOW);
  const bool isMissing = !window_ || window_->isManaged != managed;
  state_.needsPicture = !picture_ && (isMissing || window_->isComposited() != screen_.isComposited);
  if (picture_) {
    if (isMissing) window_.emplace(connection_, options_.layer, managed);
    window_->show(*std::exchange(picture_, nullptr), title_, screen_.isComposited);
  }
  if (!window_) return;
  const auto pixels = [this](int points) {
    return static_cast<int>(std::lround(points * state_.monitor->scale));
  };
  const auto& [top, right, bottom, left] = options_.margin;
  const Margin margin{pixels(top), pixels(right), pixels(bottom), pixels(left)};
  const auto room = freeArea(state_.monitor->area, screen_);
  window_->place(place(layout_.width, layout_.height, room, options_.anchor, margin));
}

/// Restores the position of the tile in the stack: below all other windows, but directly above the desktop
/// window of a file manager; or, in the layer above, over all windows that do not fill the screen. Leaves it
/// alone where it is right, so that two tiles do not fight for a place.
void X11Surface::restack() {
  if (window_->isManaged && options_.layer != Layer::desktop) return;  // the window manager decides
  const bool isDesktop = options_.layer == Layer::desktop;
  xcb_window_t highest = XCB_NONE;
  bool isPassed = false, isRight = true;
  for (const auto& window : screen_.windows) {
    if (std::ranges::count(window.ids, window_->id) != 0) {
      isPassed = true;
      continue;
    }
    // A smaller window of this type is another tile, which belongs there too.
    const bool isTile =
        window.isDesktop && (window.area.width <= layout_.width || window.area.height <= layout_.height);
    const bool isLower =
        !isTile && (isDesktop ? window.isDesktop : !window.isOverlay && !window.isFullScreen);
    const bool isHigher = isDesktop ? !window.isDesktop : window.isFullScreen;
    if (isLower) highest = window.ids.front();
    if (isLower && window.isDesktop) connection_.select(highest, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    isRight &= isPassed ? !isLower : !isHigher || window_->isManaged;
  }
  if (!isRight) window_->stack(highest);
}

}  // namespace

std::unique_ptr<Surface> openX11Surface(const Options& options) {
  return std::make_unique<X11Surface>(options);
}

}  // namespace desktop
