#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace desktop::x11 {

/// A connection to the display that DISPLAY names, whose first screen counts.
class Connection {
 public:
  /// Throws program::Failure (EX_UNAVAILABLE) when there is no display, or one that lacks what a tile needs.
  Connection();

  operator xcb_connection_t*() const { return connection_.get(); }  // NOLINT: for the calls of xcb

  xcb_window_t root() const { return root_; }

  /// The visual with an alpha channel, 32 bits deep, and colours for it.
  xcb_visualid_t visual() const { return visual_; }
  xcb_colormap_t colormap() const { return colormap_; }

  xcb_atom_t atom(const std::string& name) const;

  /// Sends a request. Calling the result waits for the answer, which is null where there is none, such as
  /// about a window that is gone: ask<xcb_query_tree, xcb_query_tree_reply>(window)().
  template <auto request, auto reply, class... Arguments>
  auto ask(Arguments... arguments) const {
    return [this, cookie = request(*this, arguments...)] {
      auto* answer = reply(*this, cookie, nullptr);
      return std::shared_ptr<std::remove_pointer_t<decltype(answer)>>{answer, std::free};
    };
  }

  /// The same of the items of a property, each as wide as those of `Items`. A window that is gone has none.
  template <class Items = std::vector<std::uint32_t>>
  auto property(xcb_window_t window, const std::string& name) const {
    return [reply = ask<xcb_get_property, xcb_get_property_reply>(std::uint8_t{}, window, atom(name),
                                                                  XCB_ATOM_NONE, 0U, 1U << 14)]() -> Items {
      using Item = typename Items::value_type;
      const auto answer = reply();
      if (!answer || answer->format != 8 * sizeof(Item)) return {};
      const auto* const first = static_cast<const Item*>(xcb_get_property_value(answer.get()));
      return {first, first + answer->value_len};
    };
  }

  /// Asks for events of a window.
  void select(xcb_window_t window, std::uint32_t events) const {
    xcb_change_window_attributes(*this, window, XCB_CW_EVENT_MASK, &events);
  }

 private:
  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
  xcb_window_t root_ = XCB_NONE;
  xcb_visualid_t visual_ = XCB_NONE;
  xcb_colormap_t colormap_ = XCB_NONE;
  mutable std::map<std::string, xcb_atom_t> atoms_;
};

}  // namespace desktop::x11
