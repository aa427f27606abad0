#include "wayland/connection.hpp"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

#include "common/failure.hpp"

namespace desktop::wayland {
Connection::Connection() {
  wl_log_set_handler_client([](const char*, va_list) {});  // the library would print what check() says better
  display_.reset(wl_display_connect(nullptr));
  if (!display_) throw program::Failure{EX_UNAVAILABLE, "cannot connect to the Wayland display"};
  static constexpr wl_registry_listener listener{
      .global = [](void* self, wl_registry*, std::uint32_t id, const char* interface,
                   std::uint32_t version) { static_cast<Connection*>(self)->add(id, interface, version); },
      .global_remove =
          [](void* self, wl_registry*, std::uint32_t id) {
            static_cast<Connection*>(self)->outputs_.remove_if(
                [id](const Output& output) { return output.id() == id; });
          }};
  globals_.registry.reset(wl_display_get_registry(display_.get()));
  wl_registry_add_listener(globals_.registry.get(), &listener, this);
  check(wl_display_roundtrip(display_.get()));
  if (globals_.outputDetails)
    for (Output& output : outputs_) output.askForDetails(globals_.outputDetails.get());
  check(wl_display_roundtrip(display_.get()));
}

void Connection::add(std::uint32_t id, const char* name, std::uint32_t version) {
  const auto bind = [&]<class T>(const wl_interface& interface, std::uint32_t newest, Proxy<T>& proxy) {
    if (proxy || std::string_view{name} != interface.name) return;
    version = std::min(version, newest);
    proxy.reset(static_cast<T*>(wl_registry_bind(globals_.registry.get(), id, &interface, version)));
  };
  bind(wl_compositor_interface, 4, globals_.compositor);
  bind(wl_shm_interface, 1, globals_.memory);
  bind(wp_viewporter_interface, 1, globals_.viewports);
  bind(wp_fractional_scale_manager_v1_interface, 1, globals_.fractionalScales);
  bind(zxdg_output_manager_v1_interface, 3, globals_.outputDetails);
  bind(zwlr_layer_shell_v1_interface, 2, globals_.layers);
  bind(xdg_wm_base_interface, 1, globals_.windows);
  bind(zxdg_decoration_manager_v1_interface, 1, globals_.decorations);
  if (std::string_view{name} == "org_kde_plasma_shell") globals_.isKWin = true;
  if (globals_.seat == 0 && std::string_view{name} == wl_seat_interface.name) globals_.seat = id;

  Proxy<wl_output> output;
  bind(wl_output_interface, 4, output);
  if (!output) return;
  outputs_.emplace_back(id, std::move(output));
  if (globals_.outputDetails) outputs_.back().askForDetails(globals_.outputDetails.get());
}

bool Connection::flush() {
  // Any other error is found where the reason can be read.
  return wl_display_flush(display_.get()) >= 0 || errno != EAGAIN;
}

void Connection::dispatch() {
  while (wl_display_prepare_read(display_.get()) != 0) check(wl_display_dispatch_pending(display_.get()));
  check(wl_display_read_events(display_.get()));
  check(wl_display_dispatch_pending(display_.get()));
}

void Connection::check(int result) const {
  if (result >= 0) return;
  if (wl_display_get_error(display_.get()) != EPROTO)
    throw program::Failure{EX_UNAVAILABLE, "the display went away"};
  const wl_interface* interface = nullptr;
  const auto code = wl_display_get_protocol_error(display_.get(), &interface, nullptr);
  throw program::Failure{EX_PROTOCOL, std::string{"the Wayland compositor refused a request ("} +
                                          (interface ? interface->name : "object unknown") + ", error " +
                                          std::to_string(code) + ")"};
}

}  // namespace desktop::wayland
