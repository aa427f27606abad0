#include "tarno/x11/tile_window.hpp"

#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace desktop::x11 {
namespace {

std::uint32_t alpha(std::uint32_t pixel) { return pixel >> 24; }

/// Without the transparency, so that no black is seen where an edge is cut.
std::uint32_t unpremultiplied(std::uint32_t pixel) {
  std::uint32_t color = 0xff000000;
  for (const int shift : {0, 8, 16})
    color |= std::min(255U, (pixel >> shift & 0xff) * 255 / std::max(1U, alpha(pixel))) << shift;
  return color;
}

/// What is more than half opaque in row `y`, added to `outline`.
void addOutline(std::span<const std::uint32_t> row, int y, std::vector<xcb_rectangle_t>& outline) {
  const auto isSolid = [](std::uint32_t pixel) { return alpha(pixel) > 127; };
  for (auto end = row.begin(); end != row.end();) {
    const auto start = std::find_if(end, row.end(), isSolid);
    end = std::find_if_not(start, row.end(), isSolid);
    outline.push_back({static_cast<std::int16_t>(start - row.begin()), static_cast<std::int16_t>(y),
                       static_cast<std::uint16_t>(end - start), 1});
  }
}

/// Cuts a shape of a window to some areas; to nothing for none.
void cut(xcb_connection_t* connection, xcb_window_t window, std::uint8_t shape,
         const std::vector<xcb_rectangle_t>& areas) {
  const xcb_xfixes_region_t region = xcb_generate_id(connection);
  xcb_xfixes_create_region(connection, region, static_cast<std::uint32_t>(areas.size()), areas.data());
  xcb_xfixes_set_window_shape_region(connection, window, shape, 0, 0, region);
  xcb_xfixes_destroy_region(connection, region);
}

}  // namespace

TileWindow::TileWindow(const Connection& connection, Layer layer, bool isManaged)
    : connection_(connection), isManaged_(isManaged), id_(xcb_generate_id(connection)) {
  const bool isNormal = layer == Layer::normal, isDesktop = layer == Layer::desktop;
  std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  if (isNormal) events |= XCB_EVENT_MASK_BUTTON_PRESS;
  const std::array<std::uint32_t, 5> values{0, 0, !isManaged, events, connection.colormap()};
  xcb_create_window(connection, 32, id_, connection.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    connection.visual(),
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                        XCB_CW_COLORMAP,
                    values.data());
  if (!isNormal) cut(connection, id_, XCB_SHAPE_SK_INPUT, {});

  const auto atom = [&](const char* name) { return connection.atom(name); };
  constexpr std::uint32_t inputHint = 1, takesInput = 0, decorations = 2, allWorkspaces = 0xffffffff;
  set("WM_CLASS", XCB_ATOM_STRING, std::string_view{"tarno-desktop\0Tarno-desktop\0", 28});
  set("WM_HINTS", XCB_ATOM_WM_HINTS, {inputHint, takesInput, 0, 0, 0, 0, 0, 0, 0});
  set("_MOTIF_WM_HINTS", atom("_MOTIF_WM_HINTS"), {decorations, 0, 0, 0, 0});
  // Around what is part of the desktop, managed or not, compositors draw no shadow.
  set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
      {atom(isManaged && !isDesktop ? "_NET_WM_WINDOW_TYPE_UTILITY" : "_NET_WM_WINDOW_TYPE_DESKTOP")});
  std::vector states{atom("_NET_WM_STATE_SKIP_TASKBAR"), atom("_NET_WM_STATE_SKIP_PAGER")};
  if (layer == Layer::above) states.push_back(atom("_NET_WM_STATE_ABOVE"));
  set("_NET_WM_STATE", XCB_ATOM_ATOM, states);
  if (!isNormal) set("_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {allWorkspaces});
}

void TileWindow::show(std::shared_ptr<const Picture> picture, const std::string& title, bool isComposited) {
  if (picture == picture_ && isComposited == isComposited_) return;
  picture_ = std::move(picture);
  isComposited_ = isComposited;
  set("_NET_WM_NAME", connection_.atom("UTF8_STRING"), title);
  // As the window's background, the picture comes back by itself wherever the window is uncovered.
  const auto width = static_cast<std::uint16_t>(picture_->width),
             height = static_cast<std::uint16_t>(picture_->height);
  const xcb_pixmap_t pixmap = xcb_generate_id(connection_);
  const xcb_gcontext_t context = xcb_generate_id(connection_);
  xcb_create_pixmap(connection_, 32, pixmap, id_, width, height);
  xcb_create_gc(connection_, context, pixmap, 0, nullptr);
  auto pixels = pixelsOf(*picture_);
  std::vector<xcb_rectangle_t> outline;
  for (std::int16_t y = 0; y < height; ++y) {  // a row fits into a request, whatever its limit is
    const std::span row{&pixels[pixels.size() / height * static_cast<std::size_t>(y)], width};
    addOutline(row, y, outline);
    if (!isComposited_) std::ranges::transform(row, row.begin(), unpremultiplied);
    const void* const bytes = row.data();
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width, 1, 0, y, 0, 32, width * 4U,
                  static_cast<const std::uint8_t*>(bytes));
  }
  xcb_change_window_attributes(connection_, id_, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(connection_, 0, id_, 0, 0, 0, 0);
  xcb_free_gc(connection_, context);
  xcb_free_pixmap(connection_, pixmap);
  if (isComposited_) outline = {{0, 0, width, height}};
  cut(connection_, id_, XCB_SHAPE_SK_BOUNDING, outline);
}

void TileWindow::place(const Area& area) {
  if (area == area_) return;
  const bool isNew = std::exchange(area_, area) == Area{};
  const auto width = static_cast<std::uint32_t>(area.width), height = static_cast<std::uint32_t>(area.height);
  // Place and size are the user's, the size is fixed, and x and y are the window's own, not its frame's.
  constexpr std::uint32_t flags = 1 | 2 | 16 | 32 | 512;
  set("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS,
      {flags, 0, 0, 0, 0, width, height, width, height, 0, 0, 0, 0, 0, 0, 0, 0, XCB_GRAVITY_STATIC});
  const xcb_configure_window_value_list_t values{area.x, area.y, width, height, 0, 0, 0};
  const std::uint16_t place = isDragged_ ? 0 : XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
  xcb_configure_window_aux(connection_, id_, place | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                           &values);
  if (isNew && !isManaged_) stack(XCB_NONE);
  if (isNew) xcb_map_window(connection_, id_);
}

void TileWindow::stack(xcb_window_t below) const {
  constexpr int pager = 2;  // to others it is not granted
  if (isManaged_) return tell("_NET_RESTACK_WINDOW", {pager, XCB_NONE, XCB_STACK_MODE_ABOVE});
  const bool isLowest = below == XCB_NONE;
  xcb_configure_window_value_list_t values{};
  values.sibling = below;
  values.stack_mode = isLowest ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
  const int set = XCB_CONFIG_WINDOW_STACK_MODE | (isLowest ? 0 : XCB_CONFIG_WINDOW_SIBLING);
  xcb_configure_window_aux(connection_, id_, static_cast<std::uint16_t>(set), &values);
}

void TileWindow::drag(const xcb_button_press_event_t& press) {
  isDragged_ = true;
  xcb_ungrab_pointer(connection_, press.time);
  constexpr int move = 8, application = 1;
  tell("_NET_WM_MOVERESIZE", {press.root_x, press.root_y, move, press.detail, application});
}

/// Sends the window manager a message about the window.
void TileWindow::tell(const std::string& message, std::initializer_list<int> data) const {
  xcb_client_message_event_t event{XCB_CLIENT_MESSAGE, 32, 0, id_, connection_.atom(message), {}};
  std::ranges::copy(data, event.data.data32);
  const void* const bytes = &event;
  xcb_send_event(connection_, 0, connection_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 static_cast<const char*>(bytes));
}

}  // namespace desktop::x11
