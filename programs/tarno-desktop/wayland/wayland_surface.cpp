#include "wayland/wayland_surface.hpp"

#include <poll.h>
#include <sys/epoll.h>

#include <cerrno>
#include <cmath>
#include <system_error>

#include "common/failure.hpp"
#include "wayland/connection.hpp"
#include "wayland/layer_surface.hpp"
#include "wayland/plain_window.hpp"
#include "wayland/show_desktop_watch.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;

/// A monitor goes in several steps; the layer surface that it closes is made anew when they are over.
constexpr auto monitorsSettle = 200ms;

/// For a compositor that does not read for a while.
constexpr auto flushAgain = 100ms;

class WaylandSurface final : public Surface {
 public:
  WaylandSurface(const Options& options, SurfaceOwner owner);

  /// The compositor has what the tile needs.
  bool isPossible() const;

  Wait prepare() override;
  void dispatch(short events) override;

  std::optional<double> scale() const override;
  void show(std::shared_ptr<const Picture> picture) override { picture_ = std::move(picture); }
  void setTitle(const std::string& title) override;
  Area extents() const override;
  std::string description() const override;
  std::vector<MonitorInfo> monitors() const override;

 private:
  void watch(int descriptor);
  void settle();
  void makeSurface();
  void draw();
  void tellOwner();
  const wayland::Output* chooseOutput();
  std::optional<double> outputScale() const;

  Options options_;
  SurfaceOwner owner_;
  bool isPlain_;
  std::string title_;
  std::shared_ptr<const Picture> picture_;
  wayland::Connection connection_;
  std::optional<wayland::ShowDesktopWatch> showDesktop_;
  foundation::FileDescriptor events_;  // an epoll of both
  std::unique_ptr<wayland::TileSurface> surface_;
  std::shared_ptr<const Picture> shown_;        // on surface_
  double shownAt_ = 0;                          // scale of the output
  const wayland::Output* output_ = nullptr;     // where the tile belongs; good until the next event
  std::uint32_t outputId_ = 0;                  // where surface_ is
  bool wasThere_ = false;                       // the monitor that the options name
  std::optional<Clock::time_point> notBefore_;  // a new surface
  std::optional<double> toldScale_;
  Area toldExtents_;
};

WaylandSurface::WaylandSurface(const Options& options, SurfaceOwner owner)
    : options_(options),
      owner_(std::move(owner)),
      isPlain_(options.plainWindow || options.layer == Layer::normal),
      events_(epoll_create1(EPOLL_CLOEXEC)) {
  watch(connection_.descriptor());
  if (connection_.globals().isKWin && options.layer == Layer::desktop)
    watch(showDesktop_.emplace().descriptor());
  settle();
  toldScale_ = scale();
}

void WaylandSurface::watch(int descriptor) {
  epoll_event readable{.events = EPOLLIN, .data = {}};
  if (descriptor >= 0 && epoll_ctl(events_.get(), EPOLL_CTL_ADD, descriptor, &readable) != 0)
    throw std::system_error{errno, std::generic_category(), "cannot watch the display"};
}

bool WaylandSurface::isPossible() const {
  const wayland::Globals& globals = connection_.globals();
  return globals.compositor && globals.memory &&
         (isPlain_ ? globals.windows != nullptr : globals.layers != nullptr);
}

// Events

EventSource::Wait WaylandSurface::prepare() {
  settle();
  if (!connection_.flush()) return {events_.get(), POLLIN, Clock::now() + flushAgain};
  return {events_.get(), POLLIN, notBefore_};
}

void WaylandSurface::dispatch(short) {
  connection_.dispatch();
  settle();
  tellOwner();
}

/// Does what the compositor's events and the owner's calls have made necessary.
void WaylandSurface::settle() {
  output_ = chooseOutput();
  if (surface_ && !isPlain_) {
    if (surface_->isClosed()) notBefore_ = Clock::now() + monitorsSettle;
    if (surface_->isClosed() || !output_ || output_->id() != outputId_) surface_.reset();
  }
  if (notBefore_ && Clock::now() >= *notBefore_) notBefore_.reset();
  if (!surface_ && picture_ && output_ && !notBefore_) makeSurface();
  if (!surface_) return;
  if (showDesktop_) surface_->raise(showDesktop_->isShown());
  draw();
}

/// A monitor that is named but absent is waited for. While one that was there is away, the first stands in.
const wayland::Output* WaylandSurface::chooseOutput() {
  const bool isNamed = options_.monitor && !isPlain_;
  const wayland::Output* first = nullptr;
  for (const wayland::Output& output : connection_.outputs()) {
    if (!output.isKnown()) continue;
    if (!first) first = &output;
    if (!isNamed || output.info().connector != *options_.monitor) continue;
    wasThere_ = true;
    return &output;
  }
  return isNamed && !wasThere_ ? nullptr : first;
}

void WaylandSurface::makeSurface() {
  if (isPlain_)
    surface_ = std::make_unique<wayland::PlainWindow>(connection_.globals());
  else
    surface_ = std::make_unique<wayland::LayerSurface>(connection_.globals(), output_->get(), options_);
  surface_->setTitle(title_);
  outputId_ = output_->id();
  shown_.reset();
}

void WaylandSurface::draw() {
  const auto scale = outputScale();
  if (!scale || (shown_ == picture_ && shownAt_ == *scale) || !surface_->canShow()) return;
  shown_ = picture_;
  shownAt_ = *scale;
  surface_->show(picture_, wayland::fit({picture_->width, picture_->height}, picture_->scale,
                                        options_.scale.value_or(*scale), *scale));
}

void WaylandSurface::tellOwner() {
  if (surface_ && isPlain_ && surface_->isClosed()) owner_.closed();
  if (const auto now = scale(); now != toldScale_) {
    toldScale_ = now;
    owner_.scaleChanged();
  }
  if (const auto now = extents(); now != toldExtents_) {
    toldExtents_ = now;
    owner_.moved();
  }
}

// Questions

std::optional<double> WaylandSurface::outputScale() const {
  if (surface_ && surface_->preferredScale()) return surface_->preferredScale();
  const wayland::Output* shownOn = output_;
  if (surface_ && isPlain_)
    for (const wayland::Output& output : connection_.outputs())
      if (output.get() == surface_->output()) shownOn = &output;
  if (!shownOn) return std::nullopt;
  const double scale = shownOn->info().scale;
  return connection_.globals().viewports ? scale : std::ceil(scale);
}

std::optional<double> WaylandSurface::scale() const {
  const auto scale = outputScale();
  return scale && options_.scale ? options_.scale : scale;
}

void WaylandSurface::setTitle(const std::string& title) {
  if (surface_ && title != title_) surface_->setTitle(title);
  title_ = title;
}

/// Compositors do not tell where a surface is.
Area WaylandSurface::extents() const {
  return picture_ ? Area{0, 0, picture_->width, picture_->height} : Area{};
}

std::string WaylandSurface::description() const {
  if (isPlain_) return "as a plain Wayland window, which the compositor places";
  const auto layer = std::string{"as a layer-shell surface in the "} +
                     (options_.layer == Layer::above ? "top" : "bottom") + " layer";
  if (output_) return layer + " on " + output_->info().connector;
  return layer + " as soon as there is " +
         (options_.monitor ? "the monitor " + *options_.monitor : "a monitor");
}

std::vector<MonitorInfo> WaylandSurface::monitors() const {
  std::vector<MonitorInfo> known;
  for (const wayland::Output& output : connection_.outputs())
    if (output.isKnown()) known.push_back(output.info());
  return known;
}

}  // namespace

std::unique_ptr<Surface> openWaylandSurface(const Options& options, SurfaceOwner owner) {
  auto surface = std::make_unique<WaylandSurface>(options, std::move(owner));
  if (!surface->isPossible()) return nullptr;
  return surface;
}

}  // namespace desktop
