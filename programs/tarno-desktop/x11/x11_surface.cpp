#include "x11/x11_surface.hpp"

#include <poll.h>
#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/failure.hpp"
#include "x11/monitors.hpp"
#include "x11/tile_window.hpp"
#include "x11/window_manager.hpp"
#include "x11/work_area.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;
using namespace x11;

/// Monitors, panels and window managers come and go in several steps; the tile follows after the last.
constexpr auto settlingTime = 100ms;

/// Between two looks at the stack, for when somebody else wants the same place in it.
constexpr auto restackInterval = 50ms;

constexpr std::uint32_t rootEvents = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

bool overlap(const Area& a, const Area& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

class X11Surface final : public Surface {
 public:
  X11Surface(const Options& options, SurfaceOwner owner);

  Wait prepare() override;
  void dispatch(short events) override;
  std::optional<double> scale() const override {
    return monitor_ ? std::optional{monitor_->scale} : std::nullopt;
  }
  void show(std::shared_ptr<const Picture> picture) override;
  void setTitle(const std::string& title) override;
  Area extents() const override { return extents_; }
  std::string description() const override;
  std::vector<MonitorInfo> monitors() const override { return monitors_; }

 private:
  using Moment = std::optional<Clock::time_point>;

  /// What is on the screen.
  struct Shown {
    std::shared_ptr<const Picture> picture;
    Area area;
    WindowKind kind = WindowKind::unmanaged;
    bool isComposited = false;

    friend bool operator==(const Shown&, const Shown&) = default;
  };

  void watch();
  void readMonitors();
  void look();
  void survey();
  void draw();
  void work(xcb_generic_event_t* (*next)(xcb_connection_t*));
  void handle(const xcb_generic_event_t& event);
  void handleProperty(xcb_atom_t property);
  void handleMessage(const xcb_client_message_event_t& event);
  void surveySoon() { surveyAt_ = Clock::now() + settlingTime; }
  void restackSoon() { restackAt_ = restackAt_.value_or(std::max(Clock::now(), restackNotBefore_)); }
  void moved();

  const Options options_;
  const SurfaceOwner owner_;
  const Connection connection_;
  std::vector<MonitorInfo> monitors_;
  std::optional<MonitorInfo> monitor_;  // that the tile belongs to
  bool wasThere_ = false;               // the monitor that the options name
  Area room_;                           // what panels leave of it
  WindowKind kind_ = WindowKind::unmanaged;
  bool isComposited_ = false;
  bool isKnown_ = false;             // what is above
  std::optional<double> toldScale_;  // that the owner knows of
  std::shared_ptr<const Picture> picture_;
  std::string title_;
  std::optional<TileWindow> window_;
  Shown shown_;  // in it
  Area extents_;
  bool isPressed_ = false, isDragged_ = false;  // by the pointer, in the layer "normal"
  Moment surveyAt_, restackAt_;
  Clock::time_point restackNotBefore_;
};

X11Surface::X11Surface(const Options& options, SurfaceOwner owner)
    : options_(options), owner_(std::move(owner)) {
  watch();
  readMonitors();
  toldScale_ = scale();
  surveyAt_ = Clock::now();  // what else there is to know, while the first picture is drawn
}

void X11Surface::watch() {
  connection_.select(connection_.root(), rootEvents);
  xcb_randr_select_input(connection_, connection_.root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
  for (const auto selection : {connection_.atom("_NET_WM_CM_S0"), connection_.atom("_XSETTINGS_S0")})
    xcb_xfixes_select_selection_input(connection_, connection_.root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

/// A monitor that is named but absent is waited for. While one that was there is away, the primary stands in.
void X11Surface::readMonitors() {
  monitors_ = x11::readMonitors(connection_, options_.scale ? *options_.scale : sessionScale(connection_));
  auto found = std::ranges::find(monitors_, options_.monitor.value_or(""), &MonitorInfo::connector);
  wasThere_ = wasThere_ || found != monitors_.end() || !options_.monitor;
  if (found == monitors_.end() && wasThere_)
    found = std::ranges::find(monitors_, true, &MonitorInfo::isPrimary);
  monitor_ = found == monitors_.end() ? std::nullopt : std::optional{*found};
}

void X11Surface::look() {
  isKnown_ = true;
  readMonitors();
  if (monitor_) room_ = readFreeArea(connection_, monitor_->area);
  const auto isOn = [this](const MonitorInfo& monitor) { return overlap(monitor.area, extents_); };
  if (std::ranges::none_of(monitors_, isOn)) isPressed_ = isDragged_ = false;
  const auto windowManager = windowManagerName(connection_);
  kind_ = windowKind(options_.layer, windowManager);
  // This one does not list its panels, so that nothing else tells when one appears.
  if (windowManager == "i3")
    connection_.select(connection_.root(), rootEvents | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  isComposited_ = connection_.depth() == 32 && connection_.ownerOf("_NET_WM_CM_S0") != XCB_NONE;
}

void X11Surface::survey() {
  look();
  draw();
  restackSoon();
  const auto told = std::exchange(toldScale_, scale());
  if (told != toldScale_ && owner_.scaleChanged) owner_.scaleChanged();
}

void X11Surface::show(std::shared_ptr<const Picture> picture) {
  picture_ = std::move(picture);
  if (!isKnown_) look();
  draw();
  xcb_flush(connection_);
}

void X11Surface::draw() {
  if (!monitor_ || !picture_) return window_.reset();
  const auto scaled = [](int length, double by) { return static_cast<int>(std::lround(length * by)); };
  const double enlargement = monitor_->scale / picture_->scale;
  Shown wanted{picture_,
               place(scaled(picture_->width, enlargement), scaled(picture_->height, enlargement), room_,
                     options_.anchor, scaled(options_.margin, monitor_->scale)),
               kind_, isComposited_};
  if (isDragged_) wanted.area = {extents_.x, extents_.y, wanted.area.width, wanted.area.height};
  if (window_ && wanted == shown_) return;
  if (!window_ || window_->kind() != kind_) {
    window_.emplace(connection_, kind_, options_.layer);
    window_->setTitle(title_);
  }
  window_->show(*picture_, wanted.area, isComposited_);
  shown_ = std::move(wanted);
}

void X11Surface::setTitle(const std::string& title) {
  if (title == title_) return;
  title_ = title;
  if (window_) window_->setTitle(title);
}

std::string X11Surface::description() const {
  const auto layer = std::string{"as an X11 window "} + (options_.layer == Layer::desktop  ? "of the desktop"
                                                         : options_.layer == Layer::normal ? "among others"
                                                                                           : "above others");
  if (monitor_) return layer + " on " + monitor_->connector;
  return layer + " as soon as there is " +
         (options_.monitor ? "the monitor " + *options_.monitor : "a monitor");
}

EventSource::Wait X11Surface::prepare() {
  work(xcb_poll_for_queued_event);
  xcb_flush(connection_);
  auto until = surveyAt_;
  if (restackAt_ && (!until || *restackAt_ < *until)) until = restackAt_;
  return {xcb_get_file_descriptor(connection_), POLLIN, until};
}

void X11Surface::dispatch(short) {
  work(xcb_poll_for_event);
  if (xcb_connection_has_error(connection_) == 0) return;
  try {
    const Connection
        another;  // so it was somebody who ended the tile's connection, as for a window that hangs
    if (owner_.closed) owner_.closed();
  } catch (const program::Failure&) {
    throw program::Failure{EX_UNAVAILABLE, "the display went away"};
  }
}

/// Events arrive beside the answers to what is asked meanwhile, so they are looked for until nothing is left.
void X11Surface::work(xcb_generic_event_t* (*next)(xcb_connection_t*)) {
  const auto isDue = [](Moment& moment) {
    return moment && *moment <= Clock::now() && std::exchange(moment, std::nullopt);
  };
  for (bool isBusy = true; isBusy;) {
    while (const Reply<xcb_generic_event_t> event{next(connection_)}) handle(*event);
    isBusy = isDue(surveyAt_);
    if (isBusy) survey();
    if (!isDue(restackAt_)) continue;
    isBusy = true;
    restackNotBefore_ = Clock::now() + restackInterval;
    if (window_) restack(connection_, *window_);
  }
}

void X11Surface::handle(const xcb_generic_event_t& event) {
  const void* const data = &event;
  const auto own = window_ ? window_->id() : XCB_NONE;
  switch (const int type = event.response_type & 0x7f; type) {
    case XCB_PROPERTY_NOTIFY:
      return handleProperty(static_cast<const xcb_property_notify_event_t*>(data)->atom);
    case XCB_CLIENT_MESSAGE: return handleMessage(*static_cast<const xcb_client_message_event_t*>(data));
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configured = *static_cast<const xcb_configure_notify_event_t*>(data);
      if (configured.window == own) return moved();
      if (configured.window == connection_.root()) return surveySoon();
      return restackSoon();
    }
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
      if (static_cast<const xcb_map_notify_event_t*>(data)->event == connection_.root()) surveySoon();
      return;
    case XCB_DESTROY_NOTIFY:
      if (static_cast<const xcb_destroy_notify_event_t*>(data)->window == own && owner_.closed)
        owner_.closed();
      return;
    case XCB_BUTTON_PRESS:
      isPressed_ = true;
      if (window_) window_->drag(*static_cast<const xcb_button_press_event_t*>(data));
      return;
    default:
      // What is left was asked for: monitors and selections. Errors are about windows that are gone.
      if (type > XCB_MAPPING_NOTIFY) surveySoon();
  }
}

void X11Surface::handleProperty(xcb_atom_t property) {
  const auto isIt = [&](AtomName name) { return connection_.atom(name) == property; };
  if (isIt("_NET_CLIENT_LIST_STACKING")) restackSoon();
  constexpr std::array<AtomName, 7> aboutPlace{
      "_GTK_WORKAREAS_D0",     "_NET_CLIENT_LIST", "_NET_SUPPORTING_WM_CHECK", "_NET_WM_STRUT",
      "_NET_WM_STRUT_PARTIAL", "_NET_WORKAREA",    "_XSETTINGS_SETTINGS"};
  if (property == XCB_ATOM_RESOURCE_MANAGER || std::ranges::any_of(aboutPlace, isIt)) surveySoon();
}

void X11Surface::handleMessage(const xcb_client_message_event_t& event) {
  if (event.type != connection_.atom("WM_PROTOCOLS")) return;
  const auto& data = event.data.data32;
  if (data[0] == connection_.atom("WM_DELETE_WINDOW") && owner_.closed) owner_.closed();
  if (data[0] == connection_.atom("_NET_WM_PING"))  // goes back as it came
    connection_.tell(connection_.root(), "WM_PROTOCOLS", {data[0], data[1], data[2], data[3], data[4]});
}

/// A window in a frame is told its place in the frame, so the display is asked where it is on the screen.
void X11Surface::moved() {
  const auto at = answer<xcb_translate_coordinates_reply>(
      connection_, xcb_translate_coordinates(connection_, window_->id(), connection_.root(), 0, 0));
  if (!at) return;
  const Area now{at->dst_x, at->dst_y, window_->area().width, window_->area().height};
  isDragged_ = isDragged_ || (isPressed_ && now != window_->area());
  if (std::exchange(extents_, now) != now && owner_.moved) owner_.moved();
}

}  // namespace

std::unique_ptr<Surface> openX11Surface(const Options& options, SurfaceOwner owner) {
  return std::make_unique<X11Surface>(options, std::move(owner));
}

}  // namespace desktop
