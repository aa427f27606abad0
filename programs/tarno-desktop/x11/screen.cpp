#include "tarno/x11/screen.hpp"

#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <sstream>
#include <tuple>

namespace desktop::x11 {
namespace {

std::vector<Area> areas(const Connection& connection, const std::string& property) {
  const auto words = connection.property<std::vector<int>>(connection.root(), property)();
  std::vector<Area> areas;
  for (std::size_t i = 0; i + 4 <= words.size(); i += 4)
    areas.push_back({words[i], words[i + 1], words[i + 2], words[i + 3]});
  return areas;
}

xcb_window_t ownerOf(const Connection& connection, const std::string& selection) {
  const auto reply =
      connection.ask<xcb_get_selection_owner, xcb_get_selection_owner_reply>(connection.atom(selection))();
  return reply ? reply->owner : XCB_NONE;
}

/// In pixels per point, which is one at 96 dots per inch, by the session's settings or else its resources.
double sessionScale(const Connection& connection) {
  const auto owner = ownerOf(connection, "_XSETTINGS_S0");
  if (owner != XCB_NONE) connection.select(owner, XCB_EVENT_MASK_PROPERTY_CHANGE);
  const auto settings = connection.property<std::string>(owner, "_XSETTINGS_SETTINGS")();
  const auto resources = "\n" + connection.property<std::string>(connection.root(), "RESOURCE_MANAGER")();
  // XSETTINGS have an integer, in little-endian order, as: its type 0 and a byte of no use, the length of the
  // name in 2 bytes, the name and what fills it to 4 bytes, 4 bytes that count the changes, the value.
  const auto setting = settings.find("\0\0\7\0Xft/DPI\0", 0, 12), resource = resources.find("\nXft.dpi:");
  std::int32_t value = 0;
  if (setting != std::string::npos && setting + 20 <= settings.size())
    std::memcpy(&value, &settings[setting + 16], sizeof value);
  double dpi = value / 1024.0;
  if (dpi <= 0 && resource != std::string::npos)
    std::istringstream{resources.substr(resources.find(':', resource) + 1)} >> dpi;
  return std::clamp(dpi / 96, 1.0, 16.0);
}

std::vector<Monitor> readMonitors(const Connection& connection, double scale) {
  std::vector<Monitor> monitors;
  const auto reply = connection.ask<xcb_randr_get_monitors, xcb_randr_get_monitors_reply>(
      connection.root(), std::uint8_t{true})();
  if (!reply) return monitors;
  for (auto at = xcb_randr_get_monitors_monitors_iterator(reply.get()); at.rem != 0;
       xcb_randr_monitor_info_next(&at)) {
    const auto& info = *at.data;
    monitors.push_back({"", {info.x, info.y, info.width, info.height}, scale, info.primary != 0});
    if (const auto name = connection.ask<xcb_get_atom_name, xcb_get_atom_name_reply>(info.name)())
      monitors.back().connector.assign(xcb_get_atom_name_name(name.get()), name->name_len);
  }
  return monitors;
}

/// Those that are seen. All of a level of the tree are asked before an answer is waited for, so that many
/// windows take no longer than one.
std::vector<Window> readWindows(const Connection& connection) {
  constexpr int levels = 3;  // frames, what some window managers have in these, clients
  const auto ask = [&](xcb_window_t id) {
    return std::tuple{connection.ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(id),
                      connection.ask<xcb_get_geometry, xcb_get_geometry_reply>(id),
                      connection.ask<xcb_query_tree, xcb_query_tree_reply>(id),
                      connection.property(id, "_NET_WM_WINDOW_TYPE"),
                      connection.property(id, "_NET_WM_STATE"),
                      connection.property<std::vector<int>>(id, "_NET_WM_STRUT_PARTIAL")};
  };
  const auto answers = [](const auto&... asked) { return std::tuple{asked()...}; };
  const auto is = [&](auto& list, auto name) { return std::ranges::count(list, connection.atom(name)) != 0; };
  const auto clients = connection.property(connection.root(), "_NET_CLIENT_LIST")();
  std::vector<Window> windows;
  std::vector<std::tuple<xcb_window_t, std::size_t, decltype(ask(XCB_NONE))>> asked;
  // Of what is in a frame, the buttons and borders are left out. i3 does not list the panels that it frames.
  const auto askChildren = [&](const auto& tree, std::size_t index) {
    const std::span children{xcb_query_tree_children(tree.get()), tree->children_len};
    for (const auto child : children)
      if (tree->parent == XCB_NONE || children.size() == 1 || std::ranges::count(clients, child) != 0)
        asked.emplace_back(child, index, ask(child));
  };
  if (const auto root = connection.ask<xcb_query_tree, xcb_query_tree_reply>(connection.root())())
    askChildren(root, 0);
  for (int level = 0; level < levels; ++level)
    for (auto& [id, outer, questions] : std::exchange(asked, {})) {
      auto [attributes, geometry, tree, type, state, strut] = std::apply(answers, questions);
      if (!attributes || !geometry || !tree || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
          attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
        continue;
      const bool isDesktop = is(type, "_NET_WM_WINDOW_TYPE_DESKTOP");
      if (level == 0)
        windows.push_back({{},
                           {geometry->x, geometry->y, geometry->width, geometry->height},
                           attributes->override_redirect != 0 && !isDesktop});
      const auto index = level == 0 ? windows.size() - 1 : outer;
      auto& window = windows[index];
      window.ids.push_back(id);
      window.isDesktop |= isDesktop;
      window.isFullScreen |= is(state, "_NET_WM_STATE_FULLSCREEN");
      if (strut.size() == 12) window.strut = std::move(strut);
      if (is(type, "_NET_WM_WINDOW_TYPE_DOCK")) connection.select(id, XCB_EVENT_MASK_PROPERTY_CHANGE);
      if (level + 1 < levels) askChildren(tree, index);
    }
  return windows;
}

/// From where to where something reaches, along an axis.
struct Range {
  int low, high;
};

bool overlap(const Range& a, const Range& b) { return a.low < b.high && b.low < a.high; }

Range along(std::size_t axis, const Area& area) {
  return axis == 0 ? Range{area.x, area.x + area.width} : Range{area.y, area.y + area.height};
}

/// How far inwards an area is from an edge of the screen: 0 to 3 for left, right, top, bottom, as in struts.
Range distance(std::size_t edge, const Area& screen, const Area& area) {
  const auto whole = along(edge / 2, screen), part = along(edge / 2, area);
  return edge % 2 == 0 ? Range{part.low - whole.low, part.high - whole.low}
                       : Range{whole.high - part.high, whole.high - part.low};
}

/// How much of a monitor a window reserves at an edge of it.
int reserved(const Window& window, std::size_t edge, const Area& monitor, const Screen& screen) {
  const auto axis = 1 - edge / 2;
  const auto here = distance(edge, screen.area, monitor), own = distance(edge, screen.area, window.area);
  const bool hasRange = !window.strut.empty() && window.strut[5 + 2 * edge] != 0;
  const int most =
      window.strut.empty() ? distance(edge, screen.area, screen.workArea).low : window.strut[edge];
  const int depth = hasRange ? most : window.isOverlay && own.high <= most ? own.high : 0;
  const auto range =
      hasRange ? Range{window.strut[4 + 2 * edge], window.strut[5 + 2 * edge] + 1} : along(axis, window.area);
  // What would take the whole monitor is meant for another one beyond it.
  return depth < here.high && overlap(range, along(axis, monitor)) ? std::max(0, depth - here.low) : 0;
}

}  // namespace

Screen readScreen(const Connection& connection, std::optional<double> scale) {
  const auto root = connection.root();
  Screen screen;
  if (const auto window = connection.property(root, "_NET_SUPPORTING_WM_CHECK")(); !window.empty())
    screen.windowManager = connection.property<std::string>(window[0], "_NET_WM_NAME")();
  const bool isSilent = screen.windowManager == "i3";  // about panels
  connection.select(root, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                              (isSilent ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT));
  screen.isComposited = ownerOf(connection, "_NET_WM_CM_S0") != XCB_NONE;
  screen.monitors = readMonitors(connection, scale ? *scale : sessionScale(connection));
  const auto geometry = connection.ask<xcb_get_geometry, xcb_get_geometry_reply>(root)();
  if (geometry) screen.area = {0, 0, geometry->width, geometry->height};
  screen.windows = readWindows(connection);
  const auto workAreas = areas(connection, "_NET_WORKAREA");
  screen.workArea = workAreas.empty() ? screen.area : workAreas.front();
  screen.monitorWorkAreas = areas(connection, "_GTK_WORKAREAS_D0");
  if (screen.monitors.size() == 1) screen.monitorWorkAreas.push_back(screen.workArea);
  return screen;
}

Area freeArea(const Area& monitor, const Screen& screen) {
  std::array<int, 4> insets{};
  for (std::size_t edge = 0; edge < 4; ++edge) {
    for (const auto& window : screen.windows)
      insets[edge] = std::max(insets[edge], reserved(window, edge, monitor, screen));
    for (const auto& area : screen.monitorWorkAreas)
      if (overlap(along(0, area), along(0, monitor)) && overlap(along(1, area), along(1, monitor)))
        insets[edge] = std::max(insets[edge], distance(edge, monitor, area).low);
  }
  const auto [left, right, top, bottom] = insets;
  return {monitor.x + left, monitor.y + top, monitor.width - left - right, monitor.height - top - bottom};
}

}  // namespace desktop::x11
