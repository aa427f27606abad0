#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "tarno/foundation/handle.hpp"

namespace desktop::x11 {

/// A connection to the display that DISPLAY names, whose first screen counts.
class Connection {
 public:
  /// Throws program::Failure (EX_UNAVAILABLE) when there is no display, or one that lacks what a tile needs.
  Connection();
  ~Connection() { xcb_ewmh_connection_wipe(&ewmh_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  operator xcb_connection_t*() const { return connection_.get(); }  // NOLINT: for the calls of xcb

  xcb_window_t root() const { return root_; }

  /// The visual with an alpha channel, 32 bits deep, and colours for it.
  xcb_visualid_t visual() const { return visual_; }
  xcb_colormap_t colormap() const { return colormap_; }

  /// The atoms of the Extended Window Manager Hints, and others by their name.
  xcb_ewmh_connection_t& ewmh() const { return ewmh_; }
  xcb_atom_t atom(const std::string& name) const;

  /// Waits for the answer to a request: answer<xcb_query_tree_reply>(xcb_query_tree(connection, window)).
  /// Null where there is none, such as about a window that is gone.
  template <auto reply>
  auto answer(auto cookie) const {
    auto* answer = reply(*this, cookie, nullptr);
    return tarno::Handle<std::remove_pointer_t<decltype(answer)>, std::free>{answer};
  }

  /// Asks for a property, and waits for its items, each as wide as those of `Items`. There are none where the
  /// window is gone.
  xcb_get_property_cookie_t askProperty(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(*this, 0, window, property, XCB_ATOM_NONE, 0, 1U << 14);
  }
  template <class Items = std::vector<std::uint32_t>>
  Items items(xcb_get_property_cookie_t cookie) const {
    using Item = typename Items::value_type;
    const auto property = answer<xcb_get_property_reply>(cookie);
    if (!property || property->format != 8 * sizeof(Item)) return {};
    const auto* const first = static_cast<const Item*>(xcb_get_property_value(property.get()));
    return {first, first + property->value_len};
  }
  template <class Items = std::vector<std::uint32_t>>
  Items property(xcb_window_t window, xcb_atom_t name) const {
    return items<Items>(askProperty(window, name));
  }

  /// Asks for events of a window.
  void select(xcb_window_t window, std::uint32_t events) const {
    xcb_change_window_attributes(*this, window, XCB_CW_EVENT_MASK, &events);
  }

 private:
  tarno::Handle<xcb_connection_t, xcb_disconnect> connection_;
  mutable xcb_ewmh_connection_t ewmh_{};  ///< its functions take no constant
  xcb_window_t root_ = XCB_NONE;
  xcb_visualid_t visual_ = XCB_NONE;
  xcb_colormap_t colormap_ = XCB_NONE;
  mutable std::map<std::string, xcb_atom_t> atoms_;
};

}  // namespace desktop::x11
