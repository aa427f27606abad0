#include "x11/monitors.hpp"

#include <xcb/randr.h>

#include <algorithm>
#include <charconv>

namespace desktop::x11 {
namespace {

/// At which a point is a pixel.
constexpr double dotsPerInch = 96;

/// The value of an integer among the settings. An entry is a type (0 for integers), a byte that is not used,
/// the length of the name in 2 bytes, the name and what fills it to 4 bytes, 4 bytes not used here, the
/// value.
std::optional<int> setting(std::string_view settings, std::string_view name) {
  constexpr std::size_t before = 4;
  const auto at = settings.find(name);
  const auto valueAt = at + (name.size() + 3) / 4 * 4 + 4;
  if (at == std::string_view::npos || at < before || valueAt + 4 > settings.size()) return std::nullopt;
  const auto number = [&](std::size_t start, std::size_t size) {
    const bool isBigEndian = settings[0] == 1;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
      value = value << 8 | static_cast<unsigned char>(settings[start + (isBigEndian ? i : size - 1 - i)]);
    return value;
  };
  if (settings[at - before] != 0 || number(at - 2, 2) != name.size()) return std::nullopt;
  return static_cast<int>(number(valueAt, 4));
}

}  // namespace

std::optional<double> settingsScale(std::string_view settings) {
  const double scale = std::max<double>(setting(settings, "Xft/DPI").value_or(0) / 1024.0 / dotsPerInch,
                                        setting(settings, "Gdk/WindowScalingFactor").value_or(0));
  return scale > 0 ? std::optional{scale} : std::nullopt;
}

std::optional<double> resourceScale(std::string_view resources) {
  constexpr std::string_view key = "\nXft.dpi:";
  const auto lines = "\n" + std::string{resources};
  const auto at = lines.find(key);
  if (at == std::string::npos) return std::nullopt;
  const auto start = lines.find_first_not_of(" \t", at + key.size());
  double dots = 0;
  std::from_chars(lines.data() + std::min(start, lines.size()), lines.data() + lines.size(), dots);
  return dots > 0 ? std::optional{dots / dotsPerInch} : std::nullopt;
}

double sessionScale(const Connection& connection) {
  PropertyRequest resources{connection, connection.root(), XCB_ATOM_RESOURCE_MANAGER};
  const auto owner = connection.ownerOf("_XSETTINGS_S0");
  if (owner != XCB_NONE) connection.select(owner, XCB_EVENT_MASK_PROPERTY_CHANGE);
  PropertyRequest settings{connection, owner, connection.atom("_XSETTINGS_SETTINGS")};
  const auto fallback = resourceScale(resources.bytes());
  return std::clamp(settingsScale(settings.bytes()).value_or(fallback.value_or(1)), 1.0, 16.0);
}

std::vector<MonitorInfo> readMonitors(const Connection& connection, double scale) {
  const auto reply = answer<xcb_randr_get_monitors_reply>(
      connection, xcb_randr_get_monitors(connection, connection.root(), true));
  std::vector<MonitorInfo> monitors;
  if (!reply) return monitors;
  std::vector<xcb_get_atom_name_cookie_t> names;
  for (auto at = xcb_randr_get_monitors_monitors_iterator(reply.get()); at.rem != 0;
       xcb_randr_monitor_info_next(&at)) {
    const auto& info = *at.data;
    monitors.push_back({"", {info.x, info.y, info.width, info.height}, scale, info.primary != 0});
    names.push_back(xcb_get_atom_name(connection, info.name));
  }
  for (std::size_t i = 0; i < names.size(); ++i)
    if (const auto name = answer<xcb_get_atom_name_reply>(connection, names[i]))
      monitors[i].connector.assign(xcb_get_atom_name_name(name.get()), name->name_len);
  if (!monitors.empty() && std::ranges::none_of(monitors, &MonitorInfo::isPrimary))
    monitors.front().isPrimary = true;
  return monitors;
}

}  // namespace desktop::x11
