#include "x11/tile_window.hpp"

#include <xcb/xfixes.h>

#include <algorithm>

#include "x11/pixels.hpp"

namespace desktop::x11 {
namespace {

/// Cuts a shape of a window to some areas; to nothing for none.
void cut(const Connection& connection, xcb_window_t window, std::uint8_t shape,
         const std::vector<Area>& areas) {
  std::vector<xcb_rectangle_t> rectangles(areas.size());
  std::ranges::transform(areas, rectangles.begin(), [](const Area& area) {
    return xcb_rectangle_t{static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                           static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height)};
  });
  const xcb_xfixes_region_t region = xcb_generate_id(connection);
  xcb_xfixes_create_region(connection, region, static_cast<std::uint32_t>(rectangles.size()),
                           rectangles.data());
  xcb_xfixes_set_window_shape_region(connection, window, shape, 0, 0, region);
  xcb_xfixes_destroy_region(connection, region);
}

}  // namespace

TileWindow::TileWindow(const Connection& connection, WindowKind kind, Layer layer)
    : connection_(connection),
      kind_(kind),
      layer_(layer),
      id_(xcb_generate_id(connection)),
      colormap_(xcb_generate_id(connection)) {
  xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap_, connection.root(), connection.visual());
  xcb_create_window_value_list_t values{};
  values.override_redirect = kind == WindowKind::unmanaged;
  values.event_mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  if (layer == Layer::normal) values.event_mask |= XCB_EVENT_MASK_BUTTON_PRESS;
  values.colormap = colormap_;
  xcb_create_window_aux(connection, connection.depth(), id_, connection.root(), 0, 0, 1, 1, 0,
                        XCB_WINDOW_CLASS_INPUT_OUTPUT, connection.visual(),
                        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                            XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                        &values);
  describe();
  if (layer != Layer::normal) cut(connection, id_, XCB_SHAPE_SK_INPUT, {});
}

TileWindow::~TileWindow() {
  xcb_destroy_window(connection_, id_);
  xcb_free_colormap(connection_, colormap_);
}

/// What window managers, compositors and pagers want to know. Compositors draw no shadow around what is part
/// of the desktop, managed or not.
void TileWindow::describe() {
  const auto atom = [this](AtomName name) { return connection_.atom(name); };
  const auto set = [this](xcb_atom_t property, xcb_atom_t type, std::initializer_list<std::uint32_t> words) {
    connection_.set(id_, property, type, words);
  };
  constexpr std::string_view name{"tarno-desktop\0Tarno-desktop\0", 28};
  connection_.set(id_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, name);
  set(atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, {atom("WM_DELETE_WINDOW"), atom("_NET_WM_PING")});
  constexpr std::uint32_t inputHint = 1, takesInput = 0, decorations = 2, allWorkspaces = 0xffffffff;
  set(XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, {inputHint, takesInput, 0, 0, 0, 0, 0, 0, 0});
  set(atom("_MOTIF_WM_HINTS"), atom("_MOTIF_WM_HINTS"), {decorations, 0, 0, 0, 0});
  set(atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
      {kind_ == WindowKind::utility ? atom("_NET_WM_WINDOW_TYPE_UTILITY")
                                    : atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
  const auto skipTaskbar = atom("_NET_WM_STATE_SKIP_TASKBAR"), skipPager = atom("_NET_WM_STATE_SKIP_PAGER");
  if (layer_ == Layer::normal) return set(atom("_NET_WM_STATE"), XCB_ATOM_ATOM, {skipTaskbar, skipPager});
  set(atom("_NET_WM_STATE"), XCB_ATOM_ATOM,
      {skipTaskbar, skipPager, atom("_NET_WM_STATE_STICKY"),
       layer_ == Layer::above ? atom("_NET_WM_STATE_ABOVE") : atom("_NET_WM_STATE_BELOW")});
  set(atom("_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, {allWorkspaces});
}

void TileWindow::setTitle(const std::string& title) {
  for (const auto property : {connection_.atom("_NET_WM_NAME"), xcb_atom_t{XCB_ATOM_WM_NAME}})
    connection_.set(id_, property, connection_.atom("UTF8_STRING"), title);
}

void TileWindow::show(const Picture& picture, const Area& area, bool isComposited) {
  const Pixels pixels{picture, area.width, area.height, !isComposited};
  draw(pixels, area);
  if (isComposited)
    xcb_xfixes_set_window_shape_region(connection_, id_, XCB_SHAPE_SK_BOUNDING, 0, 0, XCB_NONE);
  else
    cut(connection_, id_, XCB_SHAPE_SK_BOUNDING, pixels.outline());
  if (area != area_) place(area);
  xcb_clear_area(connection_, 0, id_, 0, 0, 0, 0);
}

/// As the window's background, the picture comes back by itself wherever the window is uncovered.
void TileWindow::draw(const Pixels& pixels, const Area& area) {
  const auto width = static_cast<std::uint16_t>(area.width), height = static_cast<std::uint16_t>(area.height);
  const xcb_pixmap_t pixmap = xcb_generate_id(connection_);
  const xcb_gcontext_t context = xcb_generate_id(connection_);
  xcb_create_pixmap(connection_, connection_.depth(), pixmap, id_, width, height);
  xcb_create_gc(connection_, context, pixmap, 0, nullptr);
  // A request has an upper limit, and memory counts.
  const auto most = std::min<std::size_t>(xcb_get_maximum_request_length(connection_) - 16U, 1U << 16);
  const int rows = std::max(1, static_cast<int>(most) / area.width);
  for (int y = 0; y < area.height; y += rows) {
    const auto strip = pixels.strip(y, rows);
    const void* const bytes = strip.data();
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width,
                  static_cast<std::uint16_t>(std::min(rows, area.height - y)), 0,
                  static_cast<std::int16_t>(y), 0, connection_.depth(),
                  static_cast<std::uint32_t>(strip.size() * 4), static_cast<const std::uint8_t*>(bytes));
  }
  xcb_change_window_attributes(connection_, id_, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_free_gc(connection_, context);
  xcb_free_pixmap(connection_, pixmap);
}

void TileWindow::place(const Area& area) {
  const auto x = static_cast<std::uint32_t>(area.x), y = static_cast<std::uint32_t>(area.y),
             width = static_cast<std::uint32_t>(area.width), height = static_cast<std::uint32_t>(area.height);
  // Place and size are the user's, the size is fixed, and x and y are the window's own, not its frame's.
  constexpr std::uint32_t flags = 1 | 2 | 16 | 32 | 512;
  const std::array<std::uint32_t, 18> hints{
      flags, x, y, width, height, width, height, width, height, 0, 0, 0, 0, 0, 0, 0, 0, XCB_GRAVITY_STATIC};
  connection_.set(id_, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints);
  const std::array<std::uint32_t, 4> values{x, y, width, height};
  const auto configure = [&] {
    xcb_configure_window(
        connection_, id_,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        values.data());
  };
  configure();
  if (area_ == Area{}) {
    constexpr std::uint32_t lowest = XCB_STACK_MODE_BELOW;
    if (layer_ == Layer::desktop)
      xcb_configure_window(connection_, id_, XCB_CONFIG_WINDOW_STACK_MODE, &lowest);
    xcb_map_window(connection_, id_);
    configure();  // some window managers choose a place of their own for a new window
  }
  area_ = area;
}

void TileWindow::drag(const xcb_button_press_event_t& press) {
  xcb_ungrab_pointer(connection_, press.time);
  constexpr std::uint32_t move = 8, application = 1;
  connection_.tell(id_, "_NET_WM_MOVERESIZE",
                   {static_cast<std::uint32_t>(press.root_x), static_cast<std::uint32_t>(press.root_y), move,
                    press.detail, application});
}

}  // namespace desktop::x11
