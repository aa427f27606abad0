#include "tarno-desktop/desktop.hpp"

#include <glib-unix.h>

#include <csignal>

#include "common/command_line.hpp"
#include "common/failure.hpp"
#include "tarno-widget/localization.hpp"
#include "widgetkit/reload_schedule.hpp"

namespace desktop {

Desktop::Desktop(const Options& options, const widgetkit::WidgetConfiguration& widget, GdkDisplay* display)
    : options_(options),
      title_(extension::localized(widget.displayName)),
      display_(display),
      way_(chooseWay(display, options.layer)),
      tile_(widget, options.family),
      timer_([this] { ask(); }),
      timeZone_([this] { ask(); }),
      loop_(g_main_loop_new(nullptr, FALSE)) {}

Desktop::~Desktop() {
  g_signal_handlers_disconnect_by_data(display_, this);
  g_signal_handlers_disconnect_by_data(gdk_display_get_default_screen(display_), this);
  if (placing_ != 0) g_source_remove(placing_);
  g_main_loop_unref(loop_);
}

int Desktop::run() {
  const auto present = monitors(display_);
  const auto monitor = chooseMonitor(present, options_.monitor);
  if (!monitor) throw program::Failure{EX_UNAVAILABLE, "the display has no monitor"};
  if (options_.monitor && monitor->connector != *options_.monitor)
    throw program::Failure{EX_USAGE, "there is no monitor '" + *options_.monitor + "' (see --list-monitors)"};
  endOnSignals();
  watchMonitors();
  ask();
  place();
  program::complain("shown " + describe(way_, options_.layer, *monitor));
  g_main_loop_run(loop_);
  return EX_OK;
}

void Desktop::ask() {
  const auto answered = tile_.ask();
  timer_.sleepUntil(widgetkit::nextRequest(foundation::now(), answered));
  if (!tile_.refresh() || !window_) return;
  window_->setAccessibility(tile_.scene().accessibility);
  window_->redraw();
}

void Desktop::draw(cairo_t* cairo, int scale, bool isOpaque) {
  if (tile_.refresh()) window_->setAccessibility(tile_.scene().accessibility);
  tile_.paint(cairo, scale, isOpaque);
}

void Desktop::place() {
  const auto monitor = chooseMonitor(monitors(display_), options_.monitor);
  if (!monitor) {  // asleep or unplugged; a window without a monitor would not outlive it
    window_.reset();
    monitor_.reset();
    return;
  }
  // Only on X11 it is on us to keep clear of panels; a plain window goes where the compositor puts it, and
  // stays.
  const auto room = way_ == Way::x11 ? freeArea(*monitor) : Area{};
  const bool isOnIt = monitor_ && monitor_->handle == monitor->handle && room_ == room;
  if (window_ && (isOnIt || way_ == Way::plain)) return;
  window_.reset();
  monitor_ = monitor;
  room_ = room;
  window_ = std::make_unique<TileWindow>(
      way_, Spot{*monitor, tile_.size(), options_.anchor, options_.margin, options_.layer}, title_,
      TileWindow::Owner{[this](cairo_t* cairo, int scale, bool isOpaque) { draw(cairo, scale, isOpaque); },
                        [this] { closed(); }});
  window_->setAccessibility(tile_.scene().accessibility);
}

/// Monitors come and go in several steps; the tile moves once, after the last.
void Desktop::placeSoon() {
  if (placing_ != 0) return;
  const auto now = [](gpointer data) -> gboolean {
    auto& self = *static_cast<Desktop*>(data);
    self.placing_ = 0;
    self.place();
    return G_SOURCE_REMOVE;
  };
  placing_ = g_timeout_add(200, now, this);
}

/// A layer surface is closed when its monitor goes, and only then; other windows are closed by people.
void Desktop::closed() {
  if (way_ != Way::layerShell) return g_main_loop_quit(loop_);
  monitor_.reset();
  placeSoon();
}

void Desktop::watchMonitors() {
  const auto changed = +[](gpointer self) { static_cast<Desktop*>(self)->placeSoon(); };
  g_signal_connect_swapped(display_, "monitor-added", G_CALLBACK(changed), this);
  g_signal_connect_swapped(display_, "monitor-removed", G_CALLBACK(changed), this);
  GdkScreen* screen = gdk_display_get_default_screen(display_);
  g_signal_connect_swapped(screen, "monitors-changed", G_CALLBACK(changed), this);
  g_signal_connect_swapped(screen, "size-changed", G_CALLBACK(changed), this);
  if (way_ == Way::x11) roomWatch_.emplace(display_, "_NET_WORKAREA", [this] { placeSoon(); });
}

void Desktop::endOnSignals() {
  const auto end = [](gpointer self) -> gboolean {
    g_main_loop_quit(static_cast<Desktop*>(self)->loop_);
    return G_SOURCE_CONTINUE;
  };
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) g_unix_signal_add(signal, end, this);
}

}  // namespace desktop
