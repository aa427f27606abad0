#include "tarno/x11/connection.hpp"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include "tarno/common/failure.hpp"

namespace desktop::x11 {

Connection::Connection() : handle(xcb_connect(nullptr, nullptr)) {
  const auto require = [](bool isServed) {
    const char* const name = std::getenv("DISPLAY");
    if (!isServed)
      throw program::Failure{EX_UNAVAILABLE, std::string{"cannot connect to the X11 display '"} +
                                                 (name ? name : "") + "', or it lacks RANDR or XFIXES"};
  };
  // The server ignores clients of these extensions that have not sent their version; without the extensions
  // the connection breaks.
  answer<xcb_randr_query_version_reply>(xcb_randr_query_version(*this, 1, 5));
  answer<xcb_xfixes_query_version_reply>(xcb_xfixes_query_version(*this, 5, 0));
  require(xcb_connection_has_error(*this) == 0);
  const auto atom = [this](std::string_view name) {
    const auto cookie = xcb_intern_atom(*this, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = answer<xcb_intern_atom_reply>(cookie);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  };
  xsettingsOwner = atom("_XSETTINGS_S0");
  xsettings = atom("_XSETTINGS_SETTINGS");
  monitorWorkAreas = atom("_GTK_WORKAREAS_D0");
  motifHints = atom("_MOTIF_WM_HINTS");
  const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(*this)).data;
  root = screen->root;
  for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem != 0; xcb_depth_next(&depth))
    for (auto each = xcb_depth_visuals_iterator(depth.data); each.rem != 0; xcb_visualtype_next(&each))
      // The visual must have the byte order of pictures; newer servers also have visuals with blue before
      // red.
      if (depth.data->depth == 32 && each.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
          each.data->red_mask == 0xff0000)
        visual = each.data->visual_id;
  if (visual == XCB_NONE)
    throw program::Failure{EX_UNAVAILABLE,
                           "the X11 display has no ARGB visual, which needs a screen of 24 bits"};
  colormap = xcb_generate_id(*this);
  xcb_create_colormap(*this, XCB_COLORMAP_ALLOC_NONE, colormap, root, visual);
  // This is the last step: what it allocates is freed here if it fails, and by the destructor otherwise.
  require(xcb_ewmh_init_atoms_replies(&ewmh, xcb_ewmh_init_atoms(*this, &ewmh), nullptr) != 0);
}

}  // namespace desktop::x11
