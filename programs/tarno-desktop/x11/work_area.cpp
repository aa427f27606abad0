#include "x11/work_area.hpp"

#include <algorithm>

namespace desktop::x11 {
namespace {

/// An area by its edges, so that one rule holds for all of them. They are numbered as in struts: left, right,
/// top, bottom; an odd one is at the high end of its axis.
struct Box {
  std::array<int, 2> low, high;  // x, y

  explicit Box(const Area& area) : low{area.x, area.y}, high{area.x + area.width, area.y + area.height} {}

  Area area() const { return {low[0], low[1], high[0] - low[0], high[1] - low[1]}; }
  bool meets(const Box& other) const {
    return std::max(low[0], other.low[0]) < std::min(high[0], other.high[0]) &&
           std::max(low[1], other.low[1]) < std::min(high[1], other.high[1]);
  }
  bool contains(const Box& other) const {
    return low[0] <= other.low[0] && low[1] <= other.low[1] && other.high[0] <= high[0] &&
           other.high[1] <= high[1];
  }
  int length(std::size_t axis) const { return high[axis] - low[axis]; }
};

/// A window that is shorter is no panel, but a helper of a program.
constexpr int shortestPanel = 100;

/// The part of the screen that is `depth` from an edge.
Box strip(Box screen, std::size_t edge, int depth) {
  const auto axis = edge / 2;
  if (edge % 2 != 0) screen.low[axis] = screen.high[axis] - depth;
  if (edge % 2 == 0) screen.high[axis] = screen.low[axis] + depth;
  return screen;
}

/// What a window reserves at an edge. A range of nothing, which some set, is taken for that of the window.
Box reserved(const PanelWindow& window, const Box& screen, std::size_t edge) {
  Box box = strip(screen, edge, static_cast<int>(window.strut[edge]));
  if (window.strut.size() < 12) return box;
  const auto along = 1 - edge / 2;
  const auto start = window.strut[4 + 2 * edge], end = window.strut[5 + 2 * edge];
  box.low[along] = end == 0 ? Box{window.area}.low[along] : static_cast<int>(start);
  box.high[along] = end == 0 ? Box{window.area}.high[along] : static_cast<int>(end) + 1;
  return box;
}

/// Takes from `free` what is reserved at an edge of a monitor. What would take the whole monitor is meant for
/// another one beyond it.
void take(Box& free, const Box& monitor, const Box& reserved, std::size_t edge) {
  const auto axis = edge / 2;
  if (!reserved.meets(monitor)) return;
  if (edge % 2 == 0 && reserved.high[axis] < monitor.high[axis])
    free.low[axis] = std::max(free.low[axis], reserved.high[axis]);
  if (edge % 2 != 0 && reserved.low[axis] > monitor.low[axis])
    free.high[axis] = std::min(free.high[axis], reserved.low[axis]);
}

Area areaOf(std::span<const std::uint32_t> words) {
  return {static_cast<int>(words[0]), static_cast<int>(words[1]), static_cast<int>(words[2]),
          static_cast<int>(words[3])};
}

std::vector<PanelWindow> readWindows(const Connection& connection) {
  struct Requests {
    xcb_window_t window;
    xcb_get_geometry_cookie_t area;
    xcb_get_window_attributes_cookie_t attributes;
    PropertyRequest type, partial, whole;
  };
  std::vector<Requests> requests;
  const auto topLevel = connection.children(connection.root());
  for (const auto window : connection.programWindows())
    requests.push_back({window,
                        xcb_get_geometry(connection, window),
                        xcb_get_window_attributes(connection, window),
                        {connection, window, connection.atom("_NET_WM_WINDOW_TYPE")},
                        {connection, window, connection.atom("_NET_WM_STRUT_PARTIAL")},
                        {connection, window, connection.atom("_NET_WM_STRUT")}});
  std::vector<PanelWindow> windows;
  for (auto& [window, area, attributes, type, partial, whole] : requests) {
    PanelWindow read{{}, partial.words()};
    const auto place = answer<xcb_get_geometry_reply>(connection, area);
    const auto seen = answer<xcb_get_window_attributes_reply>(connection, attributes);
    if (place && seen && seen->map_state == XCB_MAP_STATE_VIEWABLE &&
        seen->_class != XCB_WINDOW_CLASS_INPUT_ONLY && std::ranges::count(topLevel, window) != 0)
      read.area = {place->x, place->y, place->width, place->height};
    auto strut = whole.words();
    if (read.strut.size() != 12)
      read.strut = strut.size() == 4 ? std::move(strut) : std::vector<std::uint32_t>{};
    if (const bool isDock = type.has("_NET_WM_WINDOW_TYPE_DOCK"); isDock || !read.strut.empty())
      connection.select(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    windows.push_back(std::move(read));
  }
  return windows;
}

}  // namespace

Area freeArea(const Area& monitor, const Area& screen, std::span<const PanelWindow> windows,
              const std::optional<Area>& workArea) {
  const Box whole{screen}, here{monitor}, left{workArea.value_or(screen)};
  Box free = here;
  for (std::size_t edge = 0; edge < 4; ++edge) {
    const auto axis = edge / 2;
    const int depth = edge % 2 == 0 ? left.low[axis] - whole.low[axis] : whole.high[axis] - left.high[axis];
    const Box rest = strip(whole, edge, depth);
    bool isExplained = false, isPanelHere = false;
    for (const auto& window : windows) {
      const Box box{window.area};
      const bool isPanel = rest.contains(box) && box.length(1 - axis) >= shortestPanel;
      isPanelHere = isPanelHere || (isPanel && box.meets(here));
      isExplained = isExplained || isPanel;
      if (window.strut.empty() || window.strut[edge] == 0) continue;
      isExplained = isExplained || static_cast<int>(window.strut[edge]) >= depth;
      take(free, here, reserved(window, whole, edge), edge);
    }
    if (depth > 0 && (isPanelHere || !isExplained)) take(free, here, rest, edge);
  }
  return free.area();
}

Area readFreeArea(const Connection& connection, const Area& monitor) {
  PropertyRequest whole{connection, connection.root(), connection.atom("_NET_WORKAREA")};
  PropertyRequest each{connection, connection.root(), connection.atom("_GTK_WORKAREAS_D0")};
  PropertyRequest supported{connection, connection.root(), connection.atom("_NET_SUPPORTED")};
  const auto root =
      answer<xcb_get_geometry_reply>(connection, xcb_get_geometry(connection, connection.root()));
  const Area screen = root ? Area{0, 0, root->width, root->height} : monitor;
  const auto workArea = whole.words();
  auto monitorAreas = each.words();
  if (!supported.has("_GTK_WORKAREAS_D0")) monitorAreas.clear();  // of a window manager that is gone
  if (monitorAreas.empty())
    return freeArea(monitor, screen, readWindows(connection),
                    workArea.size() >= 4 ? std::optional{areaOf(workArea)} : std::nullopt);
  Box free{freeArea(monitor, screen, readWindows(connection), std::nullopt)};
  for (std::size_t i = 0; i + 4 <= monitorAreas.size(); i += 4) {
    const Box area{areaOf(std::span{monitorAreas}.subspan(i))};
    if (!area.meets(free)) continue;
    for (std::size_t axis = 0; axis < 2; ++axis) {
      free.low[axis] = std::max(free.low[axis], area.low[axis]);
      free.high[axis] = std::min(free.high[axis], area.high[axis]);
    }
    break;
  }
  return free.area();
}

}  // namespace desktop::x11
