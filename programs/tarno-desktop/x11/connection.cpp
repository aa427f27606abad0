#include "tarno/x11/connection.hpp"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include "tarno/common/failure.hpp"

namespace desktop::x11 {

Connection::Connection() : connection_(xcb_connect(nullptr, nullptr)) {
  const auto require = [](bool condition) {
    const char* const name = std::getenv("DISPLAY");
    if (!condition)
      throw program::Failure{EX_UNAVAILABLE, std::string{"cannot connect to the X11 display '"} +
                                                 (name ? name : "") + "', or it lacks RANDR or XFIXES"};
  };
  // Neither extension serves a client that has not told its version; without them the connection breaks.
  answer<xcb_randr_query_version_reply>(xcb_randr_query_version(*this, 1, 5));
  answer<xcb_xfixes_query_version_reply>(xcb_xfixes_query_version(*this, 5, 0));
  require(xcb_connection_has_error(*this) == 0);
  const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(*this)).data;
  root_ = screen->root;
  for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem != 0; xcb_depth_next(&depth))
    for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem != 0; xcb_visualtype_next(&visual))
      // Pixels are written as they are in pictures; newer servers have visuals with blue before red, too.
      if (depth.data->depth == 32 && visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
          visual.data->red_mask == 0xff0000)
        visual_ = visual.data->visual_id;
  if (visual_ == XCB_NONE) throw program::Failure{EX_UNAVAILABLE, "the X11 display has no ARGB visual"};
  colormap_ = xcb_generate_id(*this);
  xcb_create_colormap(*this, XCB_COLORMAP_ALLOC_NONE, colormap_, root_, visual_);
  // Last: what it allocates is freed here when it fails, and by the destructor otherwise.
  require(xcb_ewmh_init_atoms_replies(&ewmh_, xcb_ewmh_init_atoms(*this, &ewmh_), nullptr) != 0);
}

xcb_atom_t Connection::atom(const std::string& name) const {
  auto& atom = atoms_[name];
  if (atom != XCB_NONE) return atom;
  const auto length = static_cast<std::uint16_t>(name.size());
  const auto reply = answer<xcb_intern_atom_reply>(xcb_intern_atom(*this, 0, length, name.data()));
  return atom = reply ? reply->atom : XCB_NONE;
}

}  // namespace desktop::x11
