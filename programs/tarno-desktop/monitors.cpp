#include "tarno-desktop/monitors.hpp"

#include <algorithm>

namespace desktop {
namespace {

std::string connectorOf(GdkDisplay* display, int index) {
  // Deprecated without a successor: nothing else in GTK 3 tells the connector on both systems.
  G_GNUC_BEGIN_IGNORE_DEPRECATIONS
  gchar* name = gdk_screen_get_monitor_plug_name(gdk_display_get_default_screen(display), index);
  G_GNUC_END_IGNORE_DEPRECATIONS
  std::string connector = name ? name : "monitor-" + std::to_string(index + 1);
  g_free(name);
  return connector;
}

}  // namespace

std::vector<Monitor> monitors(GdkDisplay* display) {
  std::vector<Monitor> present;
  for (int index = 0; index < gdk_display_get_n_monitors(display); ++index) {
    GdkMonitor* handle = gdk_display_get_monitor(display, index);
    GdkRectangle area;
    gdk_monitor_get_geometry(handle, &area);
    present.push_back({handle,
                       connectorOf(display, index),
                       {area.x, area.y, area.width, area.height},
                       gdk_monitor_get_scale_factor(handle),
                       gdk_monitor_is_primary(handle) != FALSE});
  }
  if (!present.empty() && std::ranges::none_of(present, &Monitor::isPrimary))
    present.front().isPrimary = true;
  return present;
}

std::optional<Monitor> chooseMonitor(const std::vector<Monitor>& present,
                                     const std::optional<std::string>& connector) {
  auto found = connector ? std::ranges::find(present, *connector, &Monitor::connector) : present.end();
  if (found == present.end()) found = std::ranges::find(present, true, &Monitor::isPrimary);
  return found == present.end() ? std::nullopt : std::optional{*found};
}

Area freeArea(const Monitor& monitor) {
  GdkRectangle area;
  gdk_monitor_get_workarea(monitor.handle, &area);
  return {area.x, area.y, area.width, area.height};
}

std::string monitorList(const std::vector<Monitor>& present) {
  std::string list;
  for (const auto& [handle, connector, area, scale, isPrimary] : present) {
    list += connector + " " + std::to_string(area.width) + "x" + std::to_string(area.height) + "+" +
            std::to_string(area.x) + "+" + std::to_string(area.y) + " scale " + std::to_string(scale) +
            (isPrimary ? " primary\n" : "\n");
  }
  return list;
}

}  // namespace desktop
