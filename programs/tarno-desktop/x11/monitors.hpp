#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarno-desktop/surface.hpp"
#include "x11/connection.hpp"

namespace desktop::x11 {

/// What the session's settings (the value of _XSETTINGS_SETTINGS, as the XSETTINGS specification lays it out)
/// say in pixels per point: the larger of Xft/DPI and Gdk/WindowScalingFactor. Nothing where they have
/// neither.
std::optional<double> settingsScale(std::string_view settings);

/// The same of the resource database (the value of RESOURCE_MANAGER), which has it as Xft.dpi.
std::optional<double> resourceScale(std::string_view resources);

/// The scale of all monitors, in pixels per point: that of the settings, else that of the resources, else 1;
/// from 1 to 16. Asks for events when the settings change.
double sessionScale(const Connection& connection);

/// The monitors that are on, in the display's order, each with `scale`. One of them is primary.
std::vector<MonitorInfo> readMonitors(const Connection& connection, double scale);

}  // namespace desktop::x11
