#include "tarno/x11/tile_window.hpp"

#include <xcb/xcb_icccm.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace desktop::x11 {
namespace {

std::uint32_t alpha(std::uint32_t pixel) { return pixel >> 24; }

/// Returns the colour without transparency, so that cut edges do not look black.
std::uint32_t unpremultiplied(std::uint32_t pixel) {
  std::uint32_t color = 0xff000000;
  for (const int shift : {0, 8, 16})
    color |= std::min(255U, (pixel >> shift & 0xff) * 255 / std::max(1U, alpha(pixel))) << shift;
  return color;
}

/// Adds the parts of row `y` that are more than half opaque to `outline`.
void addOutline(std::span<const std::uint32_t> row, int y, std::vector<xcb_rectangle_t>& outline) {
  const auto isSolid = [](std::uint32_t pixel) { return alpha(pixel) > 127; };
  for (auto end = row.begin(); end != row.end();) {
    const auto start = std::find_if(end, row.end(), isSolid);
    end = std::find_if_not(start, row.end(), isSolid);
    outline.push_back({static_cast<std::int16_t>(start - row.begin()), static_cast<std::int16_t>(y),
                       static_cast<std::uint16_t>(end - start), 1});
  }
}

/// Sets a shape of a window to some areas, or to none.
void setShape(xcb_connection_t* connection, xcb_window_t window, std::uint8_t shape,
              const std::vector<xcb_rectangle_t>& areas) {
  const xcb_xfixes_region_t region = xcb_generate_id(connection);
  xcb_xfixes_create_region(connection, region, static_cast<std::uint32_t>(areas.size()), areas.data());
  xcb_xfixes_set_window_shape_region(connection, window, shape, 0, 0, region);
  xcb_xfixes_destroy_region(connection, region);
}

}  // namespace

TileWindow::TileWindow(const Connection& connection, Layer layer, bool managed)
    : isManaged(managed), id(xcb_generate_id(connection)), connection_(connection) {
  const bool isNormal = layer == Layer::normal, isDesktop = layer == Layer::desktop;
  std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  if (isNormal) events |= XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_MOTION;
  const std::array<std::uint32_t, 5> values{0, 0, !isManaged, events, connection.colormap};
  constexpr auto given = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                         XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
  xcb_create_window(connection, 32, id, connection.root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    connection.visual, given, values.data());
  if (!isNormal) setShape(connection, id, XCB_SHAPE_SK_INPUT, {});

  constexpr std::string_view className{"tarno-desktop\0Tarno-desktop\0", 28};
  xcb_icccm_set_wm_class(connection, id, className.size(), className.data());
  xcb_icccm_wm_hints_t hints{};
  xcb_icccm_wm_hints_set_input(&hints, 0);
  xcb_icccm_set_wm_hints(connection, id, &hints);
  constexpr std::array<std::uint32_t, 5> noDecorations{
      2};  // a flag that says that the third word counts; it stays 0
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, connection.motifHints, connection.motifHints, 32,
                      noDecorations.size(), noDecorations.data());
  // Compositors draw no shadow around windows of the desktop, managed or not.
  auto& ewmh = connection.ewmh;
  auto type = isManaged && !isDesktop ? ewmh._NET_WM_WINDOW_TYPE_UTILITY : ewmh._NET_WM_WINDOW_TYPE_DESKTOP;
  xcb_ewmh_set_wm_window_type(&ewmh, id, 1, &type);
  std::vector states{ewmh._NET_WM_STATE_SKIP_TASKBAR, ewmh._NET_WM_STATE_SKIP_PAGER};
  if (layer == Layer::above) states.push_back(ewmh._NET_WM_STATE_ABOVE);
  xcb_ewmh_set_wm_state(&ewmh, id, static_cast<std::uint32_t>(states.size()), states.data());
  constexpr std::uint32_t allWorkspaces = 0xffffffff;
  if (!isNormal) xcb_ewmh_set_wm_desktop(&ewmh, id, allWorkspaces);
}

void TileWindow::show(const Picture& picture, const std::string& title, bool isComposited) {
  isComposited_ = isComposited;
  xcb_ewmh_set_wm_name(&connection_.ewmh, id, static_cast<std::uint32_t>(title.size()), title.data());
  // As the background of the window, the X server redraws the picture whenever the window is uncovered.
  const auto width = static_cast<std::uint16_t>(picture.width),
             height = static_cast<std::uint16_t>(picture.height);
  const xcb_pixmap_t pixmap = xcb_generate_id(connection_);
  const xcb_gcontext_t context = xcb_generate_id(connection_);
  xcb_create_pixmap(connection_, 32, pixmap, id, width, height);
  xcb_create_gc(connection_, context, pixmap, 0, nullptr);
  std::vector<xcb_rectangle_t> outline;
  std::vector<std::uint32_t> opaque(width);
  for (std::int16_t y = 0; y < height; ++y) {  // one row always fits into a request
    const auto row = picture.row(y);
    addOutline(row, y, outline);
    if (!isComposited_) std::ranges::transform(row, opaque.begin(), unpremultiplied);
    const void* const bytes = isComposited_ ? row.data() : opaque.data();
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width, 1, 0, y, 0, 32, width * 4U,
                  static_cast<const std::uint8_t*>(bytes));
  }
  xcb_change_window_attributes(connection_, id, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(connection_, 0, id, 0, 0, 0, 0);
  xcb_free_gc(connection_, context);
  xcb_free_pixmap(connection_, pixmap);
  if (isComposited_) outline = {{0, 0, width, height}};
  setShape(connection_, id, XCB_SHAPE_SK_BOUNDING, outline);
}

void TileWindow::place(const Area& area) {
  if (area == area_) return;
  const bool isNew = std::exchange(area_, area) == Area{};
  xcb_size_hints_t hints{};
  xcb_icccm_size_hints_set_position(&hints, 1, area.x, area.y);
  xcb_icccm_size_hints_set_size(&hints, 1, area.width, area.height);
  xcb_icccm_size_hints_set_min_size(&hints, area.width, area.height);
  xcb_icccm_size_hints_set_max_size(&hints, area.width, area.height);
  xcb_icccm_size_hints_set_win_gravity(
      &hints, XCB_GRAVITY_STATIC);  // x and y are those of the window, not of its frame
  xcb_icccm_set_wm_normal_hints(connection_, id, &hints);
  const xcb_configure_window_value_list_t values{.x = area.x,
                                                 .y = area.y,
                                                 .width = static_cast<std::uint32_t>(area.width),
                                                 .height = static_cast<std::uint32_t>(area.height)};
  const int place = isDragged_ ? 0 : XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
  configure(place | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
  if (isNew && !isManaged) stack(XCB_NONE);
  if (isNew) xcb_map_window(connection_, id);
  if (isNew && isManaged) configure(place, values);  // Fluxbox moves a new window to the corner of the screen
}

void TileWindow::stack(xcb_window_t below) const {
  if (isManaged) {  // Enlightenment ignores the message, others ignore the direct request
    xcb_ewmh_request_restack_window(&connection_.ewmh, 0, id, XCB_NONE, XCB_STACK_MODE_ABOVE);
    return configure(XCB_CONFIG_WINDOW_STACK_MODE, {.stack_mode = XCB_STACK_MODE_ABOVE});
  }
  if (below == XCB_NONE) return configure(XCB_CONFIG_WINDOW_STACK_MODE, {.stack_mode = XCB_STACK_MODE_BELOW});
  configure(XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
            {.sibling = below, .stack_mode = XCB_STACK_MODE_ABOVE});
}

void TileWindow::drag(const xcb_button_press_event_t& press, bool isMovedByManager) {
  isDragged_ = true;
  held_ = isMovedByManager ? std::nullopt : std::optional{press};
  if (held_) return;
  xcb_ungrab_pointer(connection_, press.time);
  xcb_ewmh_request_wm_moveresize(&connection_.ewmh, 0, id, static_cast<std::uint32_t>(press.root_x),
                                 static_cast<std::uint32_t>(press.root_y), XCB_EWMH_WM_MOVERESIZE_MOVE,
                                 static_cast<xcb_button_index_t>(press.detail),
                                 XCB_EWMH_CLIENT_SOURCE_TYPE_NORMAL);
}

void TileWindow::follow(const xcb_motion_notify_event_t& motion) const {
  if (held_)
    configure(XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
              {.x = motion.root_x - held_->event_x, .y = motion.root_y - held_->event_y});
}

void TileWindow::configure(int fields, const xcb_configure_window_value_list_t& values) const {
  xcb_configure_window_aux(connection_, id, static_cast<std::uint16_t>(fields), &values);
}

}  // namespace desktop::x11
