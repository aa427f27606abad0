#include "x11/connection.hpp"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include <algorithm>

#include "common/failure.hpp"

namespace desktop::x11 {

Connection::Connection() : connection_(xcb_connect(nullptr, &screenNumber_)) {
  const char* const name = std::getenv("DISPLAY");
  if (xcb_connection_has_error(*this) != 0)
    throw program::Failure{EX_UNAVAILABLE,
                           "cannot connect to the X11 display '" + std::string{name ? name : ""} + "'"};
  xcb_prefetch_maximum_request_length(*this);
  for (auto* const extension : {&xcb_randr_id, &xcb_xfixes_id}) xcb_prefetch_extension_data(*this, extension);
  std::array<xcb_intern_atom_cookie_t, AtomName::known.size()> cookies;
  std::ranges::transform(AtomName::known, cookies.begin(), [this](std::string_view known) {
    std::string atom{known};
    if (atom.ends_with("_S0")) atom.replace(atom.size() - 1, 1, std::to_string(screenNumber_));
    return xcb_intern_atom(*this, 0, static_cast<std::uint16_t>(atom.size()), atom.data());
  });
  chooseVisual();
  for (auto* const extension : {&xcb_randr_id, &xcb_xfixes_id})
    if (const auto* data = xcb_get_extension_data(*this, extension); !data || !data->present)
      throw program::Failure{EX_UNAVAILABLE, "the X11 display lacks an extension (RANDR or XFIXES)"};
  // Neither serves a client that has not told its version; what they answer is of no interest.
  xcb_discard_reply(*this, xcb_randr_query_version(*this, 1, 5).sequence);
  xcb_discard_reply(*this, xcb_xfixes_query_version(*this, 5, 0).sequence);
  std::ranges::transform(cookies, atoms_.begin(), [this](auto cookie) {
    const auto reply = answer<xcb_intern_atom_reply>(*this, cookie);
    return reply ? reply->atom : xcb_atom_t{XCB_NONE};
  });
}

/// Pixels are written as they are in pictures, so only a visual of that form will do.
void Connection::chooseVisual() {
  auto screen = xcb_setup_roots_iterator(xcb_get_setup(*this));
  for (int i = 0; i < screenNumber_; ++i) xcb_screen_next(&screen);
  screen_ = screen.data;
  for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem != 0; xcb_depth_next(&depth)) {
    if ((depth.data->depth != 24 && depth.data->depth != 32) || depth.data->depth < depth_) continue;
    for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem != 0;
         xcb_visualtype_next(&visual)) {
      const auto& v = *visual.data;
      if (v._class != XCB_VISUAL_CLASS_TRUE_COLOR || v.red_mask != 0xff0000 || v.blue_mask != 0xff) continue;
      depth_ = depth.data->depth;
      visual_ = v.visual_id;
    }
  }
  if (depth_ == 0) throw program::Failure{EX_UNAVAILABLE, "the X11 display has no visual of 24 or 32 bits"};
}

xcb_window_t Connection::ownerOf(AtomName selection) const {
  const auto reply =
      answer<xcb_get_selection_owner_reply>(*this, xcb_get_selection_owner(*this, atom(selection)));
  return reply ? reply->owner : XCB_NONE;
}

std::vector<xcb_window_t> Connection::children(xcb_window_t parent) const {
  const auto tree = answer<xcb_query_tree_reply>(*this, xcb_query_tree(*this, parent));
  if (!tree) return {};
  const auto* const first = xcb_query_tree_children(tree.get());
  return {first, first + tree->children_len};
}

std::vector<xcb_window_t> Connection::programWindows() const {
  PropertyRequest managed{*this, root(), atom("_NET_CLIENT_LIST")};
  auto windows = children(root());
  std::vector<xcb_query_tree_cookie_t> inside;
  std::ranges::transform(windows, std::back_inserter(inside),
                         [this](auto window) { return xcb_query_tree(*this, window); });
  for (const auto cookie : inside)
    if (const auto tree = answer<xcb_query_tree_reply>(*this, cookie); tree && tree->children_len == 1)
      windows.push_back(*xcb_query_tree_children(tree.get()));
  std::ranges::copy(managed.words(), std::back_inserter(windows));
  std::ranges::sort(windows);
  windows.erase(std::unique(windows.begin(), windows.end()), windows.end());
  return windows;
}

void Connection::select(xcb_window_t window, std::uint32_t events) const {
  xcb_change_window_attributes(*this, window, XCB_CW_EVENT_MASK, &events);
}

void Connection::set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                     std::span<const std::uint32_t> words) const {
  xcb_change_property(*this, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                      static_cast<std::uint32_t>(words.size()), words.data());
}

void Connection::set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::string_view text) const {
  xcb_change_property(*this, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                      static_cast<std::uint32_t>(text.size()), text.data());
}

void Connection::tell(xcb_window_t window, AtomName message, const std::array<std::uint32_t, 5>& data) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(message);
  std::ranges::copy(data, event.data.data32);
  const void* const bytes = &event;
  xcb_send_event(*this, 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 static_cast<const char*>(bytes));
}

std::vector<std::uint32_t> PropertyRequest::words() {
  const auto reply = answer<xcb_get_property_reply>(connection_, cookie_);
  if (!reply || reply->format != 32) return {};
  const auto* const first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

bool PropertyRequest::has(AtomName atom) { return std::ranges::count(words(), connection_.atom(atom)) != 0; }

std::string PropertyRequest::bytes() {
  const auto reply = answer<xcb_get_property_reply>(connection_, cookie_);
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

}  // namespace desktop::x11
