#include "wayland/plain_window.hpp"

#include <linux/input-event-codes.h>

namespace desktop::wayland {

PlainWindow::PlainWindow(const Globals& globals) : TileSurface(globals, {.x = 0, .y = 0}) {
  static constexpr auto at = [](void* self) -> PlainWindow& { return *static_cast<PlainWindow*>(self); };
  window_.reset(xdg_wm_base_get_xdg_surface(globals.windows.get(), get()));
  static constexpr xdg_surface_listener listener{
      .configure = [](void* self, xdg_surface* window, std::uint32_t serial) {
        xdg_surface_ack_configure(window, serial);
        at(self).configured();
      }};
  xdg_surface_add_listener(window_.get(), &listener, this);

  toplevel_.reset(xdg_surface_get_toplevel(window_.get()));
  static constexpr xdg_toplevel_listener toplevelListener{
      .configure = [](void*, xdg_toplevel*, int, int, wl_array*) {},  // the tile has one size
      .close = [](void* self, xdg_toplevel*) { at(self).closed(); },
      .configure_bounds = nullptr,
      .wm_capabilities = nullptr};
  xdg_toplevel_add_listener(toplevel_.get(), &toplevelListener, this);
  xdg_toplevel_set_app_id(toplevel_.get(), "tarno-desktop");
  if (globals.decorations) {
    decoration_.reset(
        zxdg_decoration_manager_v1_get_toplevel_decoration(globals.decorations.get(), toplevel_.get()));
    zxdg_toplevel_decoration_v1_set_mode(decoration_.get(), ZXDG_TOPLEVEL_DECORATION_V1_MODE_CLIENT_SIDE);
  }
  wl_surface_commit(get());

  static constexpr wl_seat_listener seatListener{
      .capabilities = [](void* self, wl_seat*, std::uint32_t value) { at(self).followPointer(value); },
      .name = nullptr};
  if (globals.seat == 0) return;
  seat_.reset(
      static_cast<wl_seat*>(wl_registry_bind(globals.registry.get(), globals.seat, &wl_seat_interface, 1)));
  wl_seat_add_listener(seat_.get(), &seatListener, this);
}

void PlainWindow::followPointer(std::uint32_t capabilities) {
  static constexpr wl_pointer_listener listener{
      .enter = [](void*, wl_pointer*, std::uint32_t, wl_surface*, wl_fixed_t, wl_fixed_t) {},
      .leave = [](void*, wl_pointer*, std::uint32_t, wl_surface*) {},
      .motion = [](void*, wl_pointer*, std::uint32_t, wl_fixed_t, wl_fixed_t) {},
      .button =
          [](void* data, wl_pointer*, std::uint32_t serial, std::uint32_t, std::uint32_t button,
             std::uint32_t state) {
            const auto& self = *static_cast<PlainWindow*>(data);
            if (button == BTN_LEFT && state == WL_POINTER_BUTTON_STATE_PRESSED)
              xdg_toplevel_move(self.toplevel_.get(), self.seat_.get(), serial);
          },
      .axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {}};
  pointer_.reset((capabilities & WL_SEAT_CAPABILITY_POINTER) != 0 ? wl_seat_get_pointer(seat_.get())
                                                                  : nullptr);
  if (pointer_) wl_pointer_add_listener(pointer_.get(), &listener, this);
}

void PlainWindow::setTitle(const std::string& title) {
  xdg_toplevel_set_title(toplevel_.get(), title.c_str());
}

void PlainWindow::resize(Extent size) {
  xdg_toplevel_set_min_size(toplevel_.get(), size.width, size.height);
  xdg_toplevel_set_max_size(toplevel_.get(), size.width, size.height);
}

}  // namespace desktop::wayland
