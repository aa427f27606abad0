#include "x11/window_manager.hpp"

#include <algorithm>

namespace desktop::x11 {
namespace {

/// These keep an unmanaged window above all others, or leave it behind what they raise to show the desktop;
/// and they let the pointer through a managed one. The others put managed windows into frames, which catch
/// it.
constexpr std::array<std::string_view, 4> frameless{"GNOME Shell", "KWin", "Metacity", "Mutter"};

/// The window on the root window, such as a frame, that has `window` in it.
xcb_window_t topLevel(const Connection& connection, xcb_window_t window) {
  for (;;) {
    const auto tree = answer<xcb_query_tree_reply>(connection, xcb_query_tree(connection, window));
    if (!tree || tree->parent == connection.root() || tree->parent == XCB_NONE) return window;
    window = tree->parent;
  }
}

/// Another tile in the same place is of the desktop too; the two must not restack each other for ever.
bool isLarger(const Connection& connection, xcb_window_t window, const TileWindow& tile) {
  const auto size = answer<xcb_get_geometry_reply>(connection, xcb_get_geometry(connection, window));
  return size && size->width > tile.area().width && size->height > tile.area().height;
}

/// The windows on the root window that belong below the tile.
std::vector<xcb_window_t> windowsBelow(const Connection& connection, const TileWindow& tile) {
  const bool isDesktop = tile.layer() == Layer::desktop;
  const auto windows =
      isDesktop ? connection.programWindows()
                : PropertyRequest{connection, connection.root(), connection.atom("_NET_CLIENT_LIST")}.words();
  const auto list = isDesktop ? connection.atom("_NET_WM_WINDOW_TYPE") : connection.atom("_NET_WM_STATE");
  std::vector<PropertyRequest> requests;
  requests.reserve(windows.size());
  for (const auto window : windows) requests.emplace_back(connection, window, list);
  std::vector<xcb_window_t> below;
  for (std::size_t i = 0; i < windows.size(); ++i)
    if (isDesktop ? requests[i].has("_NET_WM_WINDOW_TYPE_DESKTOP") && isLarger(connection, windows[i], tile)
                  : !requests[i].has("_NET_WM_STATE_FULLSCREEN"))
      below.push_back(topLevel(connection, windows[i]));
  return below;
}

}  // namespace

std::string windowManagerName(const Connection& connection) {
  const auto window =
      PropertyRequest{connection, connection.root(), connection.atom("_NET_SUPPORTING_WM_CHECK")}.words();
  return window.empty() ? ""
                        : PropertyRequest{connection, window[0], connection.atom("_NET_WM_NAME")}.bytes();
}

WindowKind windowKind(Layer layer, std::string_view windowManager) {
  if (layer == Layer::normal) return WindowKind::utility;
  const auto isPartOfIt = [&](auto name) { return windowManager.find(name) != std::string_view::npos; };
  if (std::ranges::none_of(frameless, isPartOfIt)) return WindowKind::unmanaged;
  return layer == Layer::desktop ? WindowKind::desktop : WindowKind::utility;
}

void restack(const Connection& connection, const TileWindow& tile) {
  if (tile.kind() == WindowKind::utility) return;
  const auto below = windowsBelow(connection, tile);
  if (tile.layer() == Layer::desktop)
    for (const auto window : below) connection.select(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  const auto stack = connection.children(connection.root());
  const auto own = std::ranges::find(stack, topLevel(connection, tile.id()));
  const auto isBelow = [&](xcb_window_t window) { return std::ranges::count(below, window) != 0; };
  const auto wanted =
      std::find_if(stack.rbegin(), stack.rend(), isBelow).base();  // above the highest of them
  if (own == stack.end() || own == wanted) return;
  if (tile.kind() == WindowKind::desktop) {
    constexpr std::uint32_t pager = 2;  // to others it is not granted
    if (own < wanted)
      connection.tell(tile.id(), "_NET_RESTACK_WINDOW", {pager, XCB_NONE, XCB_STACK_MODE_ABOVE, 0, 0});
  } else if (wanted != stack.begin()) {
    const std::array<std::uint32_t, 2> values{*(wanted - 1), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(connection, tile.id(), XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                         values.data());
  } else if (tile.layer() == Layer::desktop) {
    constexpr std::uint32_t lowest = XCB_STACK_MODE_BELOW;
    xcb_configure_window(connection, tile.id(), XCB_CONFIG_WINDOW_STACK_MODE, &lowest);
  }
}

}  // namespace desktop::x11
