#include "tarno/x11/screen.hpp"

#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>

namespace desktop::x11 {
namespace {

using Cardinals = std::vector<int>;

bool contains(const std::vector<std::uint32_t>& list, std::uint32_t item) {
  return std::ranges::count(list, item) != 0;
}

std::vector<Area> readAreas(const Connection& connection, xcb_atom_t property) {
  const auto numbers = connection.items<Cardinals>(connection.ask(connection.root, property));
  std::vector<Area> areas;
  for (std::size_t i = 0; i + 4 <= numbers.size(); i += 4)
    areas.push_back({numbers[i], numbers[i + 1], numbers[i + 2], numbers[i + 3]});
  return areas;
}

xcb_window_t ownerOf(const Connection& connection, xcb_atom_t selection) {
  const auto cookie = xcb_get_selection_owner(connection, selection);
  const auto reply = connection.answer<xcb_get_selection_owner_reply>(cookie);
  return reply ? reply->owner : XCB_NONE;
}

/// Returns the scale from the XSETTINGS of the session, or else from its resources, in pixels per point: 1 at
/// 96 dpi.
double sessionScale(const Connection& connection) {
  const auto owner = ownerOf(connection, connection.xsettingsOwner);
  if (owner != XCB_NONE) connection.select(owner, XCB_EVENT_MASK_PROPERTY_CHANGE);
  const auto settings = connection.items<std::string>(connection.ask(owner, connection.xsettings));
  const auto resources =
      "\n" + connection.items<std::string>(connection.ask(connection.root, XCB_ATOM_RESOURCE_MANAGER));
  // An integer in XSETTINGS, in little-endian order: type 0, one unused byte, 2 bytes for the length of the
  // name, the name padded to 4 bytes, 4 bytes for a serial number, the value.
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
  const auto cookie = xcb_randr_get_monitors(connection, connection.root, 1);
  const auto reply = connection.answer<xcb_randr_get_monitors_reply>(cookie);
  if (!reply) return monitors;
  for (auto at = xcb_randr_get_monitors_monitors_iterator(reply.get()); at.rem != 0;
       xcb_randr_monitor_info_next(&at)) {
    const auto& info = *at.data;
    monitors.push_back({"", {info.x, info.y, info.width, info.height}, scale, info.primary != 0});
    if (const auto name =
            connection.answer<xcb_get_atom_name_reply>(xcb_get_atom_name(connection, info.name)))
      monitors.back().connector.assign(xcb_get_atom_name_name(name.get()), name->name_len);
  }
  return monitors;
}

/// The requests about one window.
struct WindowQuery {
  const Connection& connection;
  xcb_window_t id;
  std::size_t index;  ///< of the top-level window that contains it
  xcb_get_window_attributes_cookie_t attributes = xcb_get_window_attributes(connection, id);
  xcb_get_geometry_cookie_t geometry = xcb_get_geometry(connection, id);
  xcb_query_tree_cookie_t tree = xcb_query_tree(connection, id);
  xcb_get_property_cookie_t type = connection.ask(id, connection.ewmh._NET_WM_WINDOW_TYPE);
  xcb_get_property_cookie_t state = connection.ask(id, connection.ewmh._NET_WM_STATE);
  xcb_get_property_cookie_t strut = connection.ask(id, connection.ewmh._NET_WM_STRUT_PARTIAL);
};

/// Returns the visible windows, bottom to top. All requests for a level of the tree are sent before the first
/// answer is read, so that many windows take no longer than one.
std::vector<Window> readWindows(const Connection& connection) {
  constexpr int levels = 3;  // frames, an inner window of some window managers, clients
  const auto& ewmh = connection.ewmh;
  const auto clients = connection.items(connection.ask(connection.root, ewmh._NET_CLIENT_LIST));
  std::vector<Window> windows;
  std::vector<WindowQuery> queries;
  // Beside a client in a frame, buttons and borders are skipped. Some window managers list no clients, and i3
  // does not list the panels that it puts into frames.
  const auto askChildren = [&](const auto& tree, std::size_t index) {
    const std::span children{xcb_query_tree_children(tree.get()), tree->children_len};
    const auto isClient = [&](xcb_window_t child) { return contains(clients, child); };
    const bool isFrame = tree->parent != XCB_NONE && std::ranges::any_of(children, isClient);
    for (const auto child : children)
      if (!isFrame || isClient(child)) queries.push_back({connection, child, index});
  };
  const auto cookie = xcb_query_tree(connection, connection.root);
  if (const auto root = connection.answer<xcb_query_tree_reply>(cookie)) askChildren(root, 0);
  for (int level = 0; level < levels; ++level)
    for (const auto& query : std::exchange(queries, {})) {
      const auto attributes = connection.answer<xcb_get_window_attributes_reply>(query.attributes);
      const auto geometry = connection.answer<xcb_get_geometry_reply>(query.geometry);
      const auto tree = connection.answer<xcb_query_tree_reply>(query.tree);
      const auto type = connection.items(query.type), state = connection.items(query.state);
      auto strut = connection.items<Cardinals>(query.strut);
      if (!attributes || !geometry || !tree || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
          attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
        continue;
      const bool isDesktop = contains(type, ewmh._NET_WM_WINDOW_TYPE_DESKTOP);
      const auto index = level == 0 ? windows.size() : query.index;
      if (level == 0)
        windows.push_back({{},
                           {geometry->x, geometry->y, geometry->width, geometry->height},
                           attributes->override_redirect != 0 && !isDesktop});
      auto& window = windows[index];
      window.ids.push_back(query.id);
      const bool isClient = contains(clients, query.id);
      window.hasClient |= isClient;
      if (isClient) {
        window.isOverlay = false;  // the frames of some window managers are override-redirect
        connection.select(query.id, attributes->your_event_mask | XCB_EVENT_MASK_PROPERTY_CHANGE);
      }
      window.isDesktop |= isDesktop;
      window.isFullScreen |= contains(state, ewmh._NET_WM_STATE_FULLSCREEN);
      if (strut.size() == 12) window.strut = std::move(strut);
      if (contains(type, ewmh._NET_WM_WINDOW_TYPE_DOCK))
        connection.select(query.id, XCB_EVENT_MASK_PROPERTY_CHANGE);
      if (!isClient && level + 1 < levels) askChildren(tree, index);
    }
  return windows;
}

/// A range along an axis.
struct Range {
  int low, high;
};

bool overlap(const Range& a, const Range& b) { return a.low < b.high && b.low < a.high; }

Range along(std::size_t axis, const Area& area) {
  return axis == 0 ? Range{area.x, area.x + area.width} : Range{area.y, area.y + area.height};
}

/// Returns the distance of an area from an edge of the screen, inwards. Edges are numbered like struts: 0 to
/// 3 for left, right, top, bottom.
Range distance(std::size_t edge, const Area& screen, const Area& area) {
  const auto whole = along(edge / 2, screen), part = along(edge / 2, area);
  return edge % 2 == 0 ? Range{part.low - whole.low, part.high - whole.low}
                       : Range{whole.high - part.high, whole.high - part.low};
}

/// Returns how many pixels of a monitor a window reserves at an edge.
int reserved(const Window& window, std::size_t edge, const Area& monitor, const Screen& screen) {
  const auto& strut = window.strut;
  const auto here = distance(edge, screen.area, monitor), own = distance(edge, screen.area, window.area);
  const bool hasRange = !strut.empty() && strut[5 + 2 * edge] != 0;
  const int most = strut.empty() ? distance(edge, screen.area, screen.workArea).low : strut[edge];
  const int depth = hasRange ? most : window.isOverlay && own.high <= most ? own.high : 0;
  const auto axis = 1 - edge / 2;
  const auto range =
      hasRange ? Range{strut[4 + 2 * edge], strut[5 + 2 * edge] + 1} : along(axis, window.area);
  // A strut as deep as the monitor is meant for another monitor behind it.
  return depth < here.high && overlap(range, along(axis, monitor)) ? std::max(0, depth - here.low) : 0;
}

}  // namespace

Screen readScreen(const Connection& connection, std::optional<double> scale) {
  const auto root = connection.root;
  const auto& ewmh = connection.ewmh;
  Screen screen;
  const auto manager = connection.items(connection.ask(root, ewmh._NET_SUPPORTING_WM_CHECK));
  if (!manager.empty())
    screen.windowManager = connection.items<std::string>(connection.ask(manager[0], ewmh._NET_WM_NAME));
  if (!screen.windowManager.empty())  // one that ended leaves its list behind
    screen.supported = connection.items(connection.ask(root, ewmh._NET_SUPPORTED));
  // No property reports the panels that a window manager ignores, nor what is raised without one.
  connection.select(root, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                              XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  screen.isComposited = ownerOf(connection, ewmh._NET_WM_CM_Sn[0]) != XCB_NONE;
  screen.monitors = readMonitors(connection, scale ? *scale : sessionScale(connection));
  if (const auto geometry = connection.answer<xcb_get_geometry_reply>(xcb_get_geometry(connection, root)))
    screen.area = {0, 0, geometry->width, geometry->height};
  screen.windows = readWindows(connection);
  const auto fillsMonitor = [&](const Window& window) {
    return std::ranges::count(screen.monitors, window.area, &Monitor::area) != 0;
  };
  if (screen.supports(ewmh._NET_CLIENT_LIST))  // spectrwm covers the root window with windows of its own
    for (auto& window : screen.windows)
      window.isDesktop |= !window.isOverlay && !window.hasClient && fillsMonitor(window);
  const auto workAreas = readAreas(connection, ewmh._NET_WORKAREA);
  screen.workArea = workAreas.empty() ? screen.area : workAreas.front();
  screen.monitorWorkAreas = readAreas(connection, connection.monitorWorkAreas);
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
