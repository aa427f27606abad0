#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace desktop::x11 {

/// Frees what xcb hands out.
struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

/// An answer or an event of the display; null where there is none, such as about a window that is gone.
template <class T>
using Reply = std::unique_ptr<T, Free>;

/// Waits for the answer to a request. Ask all that is needed first: then it takes one round trip.
template <auto read, class Cookie>
auto answer(xcb_connection_t* connection, Cookie cookie) {
  return Reply<std::remove_pointer_t<decltype(read(connection, cookie, nullptr))>>{
      read(connection, cookie, nullptr)};
}

/// The name of an atom that a connection knows; any other does not compile.
class AtomName {
 public:
  // clang-format off
  /// Where a name ends with S0, the number is that of the screen.
  static constexpr std::array<std::string_view, 31> known{
      "UTF8_STRING", "WM_DELETE_WINDOW", "WM_PROTOCOLS", "_GTK_WORKAREAS_D0", "_MOTIF_WM_HINTS",
      "_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING", "_NET_RESTACK_WINDOW", "_NET_SUPPORTED",
      "_NET_SUPPORTING_WM_CHECK", "_NET_WM_CM_S0", "_NET_WM_DESKTOP", "_NET_WM_MOVERESIZE", "_NET_WM_NAME",
      "_NET_WM_PING", "_NET_WM_STATE", "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_BELOW",
      "_NET_WM_STATE_FULLSCREEN", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_SKIP_TASKBAR",
      "_NET_WM_STATE_STICKY", "_NET_WM_STRUT", "_NET_WM_STRUT_PARTIAL", "_NET_WM_WINDOW_TYPE",
      "_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK", "_NET_WM_WINDOW_TYPE_UTILITY",
      "_NET_WORKAREA", "_XSETTINGS_S0", "_XSETTINGS_SETTINGS"};
  // clang-format on

  consteval AtomName(const char* name) {  // NOLINT: a name in the text is meant to become one
    while (known.at(index) != name) ++index;
  }

  std::size_t index = 0;
};

/// A connection to the display that DISPLAY names, and what does not change while it lasts.
class Connection {
 public:
  /// Throws program::Failure (EX_UNAVAILABLE) when there is no display, or one that lacks what a tile needs.
  Connection();

  operator xcb_connection_t*() const { return connection_.get(); }  // NOLINT: for the calls of xcb

  xcb_atom_t atom(AtomName name) const { return atoms_[name.index]; }
  xcb_window_t root() const { return screen_->root; }

  /// 32 bits deep, with an alpha channel, where the display has such a visual, else 24.
  std::uint8_t depth() const { return depth_; }
  xcb_visualid_t visual() const { return visual_; }

  xcb_window_t ownerOf(AtomName selection) const;

  /// The windows inside `parent`, bottom to top.
  std::vector<xcb_window_t> children(xcb_window_t parent) const;

  /// Every window that may be a program's own: those that the window manager lists, those on the root window,
  /// and those that are alone in a frame, since some window managers do not list panels.
  std::vector<xcb_window_t> programWindows() const;

  /// Asks for events of a window.
  void select(xcb_window_t window, std::uint32_t events) const;

  void set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
           std::span<const std::uint32_t> words) const;
  void set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::string_view text) const;

  /// Sends the window manager a message about `window`.
  void tell(xcb_window_t window, AtomName message, const std::array<std::uint32_t, 5>& data) const;

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  void chooseVisual();

  int screenNumber_ = 0;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  const xcb_screen_t* screen_ = nullptr;
  std::array<xcb_atom_t, AtomName::known.size()> atoms_{};
  std::uint8_t depth_ = 0;
  xcb_visualid_t visual_ = XCB_NONE;
};

/// A question about a property of a window: sent at once, answered later. Read each once; a window that is
/// gone has no properties.
class PropertyRequest {
 public:
  PropertyRequest(const Connection& connection, xcb_window_t window, xcb_atom_t property)
      : connection_(connection),
        cookie_(xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 14)) {}

  /// The items of a property that is a list of 32-bit values.
  std::vector<std::uint32_t> words();

  /// Whether `atom` is in the list.
  bool has(AtomName atom);

  /// The bytes of a property that is a text, or is to be taken apart.
  std::string bytes();

 private:
  const Connection& connection_;
  xcb_get_property_cookie_t cookie_;
};

}  // namespace desktop::x11
