#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "tarno/foundation/handle.hpp"

namespace desktop::x11 {

/// A connection to the display that DISPLAY names. It uses the first screen.
struct Connection {
  /// Throws program::Failure (EX_UNAVAILABLE) if there is no display or it lacks what a tile needs.
  Connection();
  ~Connection() { xcb_ewmh_connection_wipe(&ewmh); }

  operator xcb_connection_t*() const { return handle.get(); }  // NOLINT: for the calls of xcb

  /// Waits for the answer to a request: answer<xcb_query_tree_reply>(xcb_query_tree(connection, window)).
  /// Returns null if there is no answer, for example because the window is gone.
  template <auto reply>
  auto answer(auto cookie) const {
    auto* answer = reply(*this, cookie, nullptr);
    return tarno::Handle<std::remove_pointer_t<decltype(answer)>, std::free>{answer};
  }

  /// Requests a property.
  xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(*this, 0, window, property, XCB_ATOM_NONE, 0, 1U << 14);
  }

  /// Waits for the items of a property, which have the size of the items of `Items`. Empty if the window is
  /// gone.
  template <class Items = std::vector<std::uint32_t>>
  Items items(xcb_get_property_cookie_t asked) const {
    using Item = typename Items::value_type;
    const auto property = answer<xcb_get_property_reply>(asked);
    if (!property || property->format != 8 * sizeof(Item)) return {};
    const auto* const first = static_cast<const Item*>(xcb_get_property_value(property.get()));
    return {first, first + property->value_len};
  }

  /// Requests events of a window.
  void select(xcb_window_t window, std::uint32_t events) const {
    xcb_change_window_attributes(*this, window, XCB_CW_EVENT_MASK, &events);
  }

  tarno::Handle<xcb_connection_t, xcb_disconnect> handle;
  mutable xcb_ewmh_connection_t ewmh{};  ///< its functions do not take a constant
  xcb_atom_t xsettingsOwner{}, xsettings{}, monitorWorkAreas{}, motifHints{};  ///< `ewmh` has all others
  xcb_window_t root = XCB_NONE;
  xcb_visualid_t visual = XCB_NONE;  ///< with an alpha channel, 32 bits deep
  xcb_colormap_t colormap = XCB_NONE;
};

}  // namespace desktop::x11
