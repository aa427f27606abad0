#include "tarno/wayland/display.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "tarno/common/failure.hpp"

namespace desktop::wayland {
namespace {

void noteMode(void* output, auto*, std::uint32_t flags, int width, int height, int) {
  if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) static_cast<Output*>(output)->mode = {0, 0, width, height};
}

void noteInfo(void* data, auto*) {
  auto& [id, proxy, details, info, name, mode, x, y, width, height] = *static_cast<Output*>(data);
  if (mode.width <= 0 || width <= 0 || height <= 0) return;
  const bool isTurned = (mode.width < mode.height) != (width < height);
  const Area pixels{x, y, isTurned ? mode.height : mode.width, isTurned ? mode.width : mode.height};
  // Old compositors do not name their outputs.
  info = {name.empty() ? "output-" + std::to_string(id) : name, pixels,
          outputScale(pixels, {x, y, width, height})};
}

constexpr wl_output_listener outputListener{.geometry = ignore,
                                            .mode = noteMode,
                                            .done = noteInfo,
                                            .scale = ignore,
                                            .name = store<&Output::name>,
                                            .description = ignore};

constexpr zxdg_output_v1_listener detailsListener{.logical_position = store<&Output::x, &Output::y>,
                                                  .logical_size = store<&Output::width, &Output::height>,
                                                  .done = noteInfo,  // sent up to version 2
                                                  .name = store<&Output::name>,
                                                  .description = ignore};

}  // namespace

double outputScale(const Area& pixels, const Area& points) {
  constexpr int finestParts = 120;  // wp_fractional_scale_v1 has scales in 1/120
  const double ratio = static_cast<double>(pixels.width + pixels.height) / (points.width + points.height);
  for (int parts = 1; parts <= finestParts; ++parts) {
    if (finestParts % parts != 0 && 100 % parts != 0)
      continue;  // only scales of the protocol and round percentages are likely
    const double scale = std::round(ratio * parts) / parts;
    if (std::abs(pixels.width / scale - points.width) < 1 &&
        std::abs(pixels.height / scale - points.height) < 1)
      return scale;
  }
  return ratio;
}

int surfaceSide(int pixels, double scale) {
  constexpr double tolerance = 0.01;  // pixels
  const int first = static_cast<int>(std::ceil((pixels - tolerance) / scale));
  for (int points = first; points <= first + 120; ++points)
    if (std::abs(points * scale - std::round(points * scale)) < tolerance) return points;
  return first;
}

Display::Display() {
  wl_log_set_handler_client([](auto...) {});  // check() prints a better message
  connection.reset(wl_display_connect(nullptr));
  if (const char* const name = std::getenv("WAYLAND_DISPLAY"); !connection)
    throw program::Failure{EX_UNAVAILABLE,
                           std::string{"cannot connect to the Wayland display '"} + (name ? name : "") + "'"};
  static constexpr wl_registry_listener listener{.global = call<&Display::add>,
                                                 .global_remove = call<&Display::remove>};
  registry.reset(wl_display_get_registry(connection.get()));
  wl_registry_add_listener(registry.get(), &listener, this);
  check(wl_display_roundtrip(connection.get()));  // receives the list of globals
  static constexpr wl_seat_listener seatListener{.capabilities = store<&Display::seatCapabilities>,
                                                 .name = ignore};
  if (seat) wl_seat_add_listener(seat.get(), &seatListener, this);
  check(wl_display_roundtrip(connection.get()));  // receives the first events of the globals
  const auto require = [](bool isThere, const wl_interface& protocol) {
    if (!isThere)
      throw program::Failure{EX_UNAVAILABLE, std::string{"the Wayland compositor lacks the protocol "} +
                                                 protocol.name + ", which the tile needs"};
  };
  require(compositor != nullptr, wl_compositor_interface);
  require(memory != nullptr, wl_shm_interface);
  require(viewports != nullptr, wp_viewporter_interface);
  require(windows != nullptr, xdg_wm_base_interface);
  require(outputDetails != nullptr, zxdg_output_manager_v1_interface);
  static constexpr xdg_wm_base_listener aliveListener{
      .ping = [](void*, auto* base, auto serial) { xdg_wm_base_pong(base, serial); }};
  xdg_wm_base_add_listener(windows.get(), &aliveListener, nullptr);
}

void Display::add(std::uint32_t id, const char* name, std::uint32_t version) {
  const auto bind = [&]<class T>(const wl_interface& interface, std::uint32_t newest, Global<T>& proxy) {
    if (proxy || std::string_view{name} != interface.name) return;
    version = std::min(version, newest);
    proxy.reset(static_cast<T*>(wl_registry_bind(registry.get(), id, &interface, version)));
  };
  bind(wl_compositor_interface, 4, compositor);
  bind(wl_shm_interface, 1, memory);
  bind(wp_viewporter_interface, 1, viewports);
  bind(xdg_wm_base_interface, 1, windows);
  bind(zwlr_layer_shell_v1_interface, 2, layers);
  bind(wp_fractional_scale_manager_v1_interface, 1, fractionalScales);
  bind(zxdg_output_manager_v1_interface, 3, outputDetails);
  bind(wl_seat_interface, 3, seat);  // from version 3 on, pointers can be released
  if (std::string_view{name} == "org_kde_plasma_shell") isKWin = true;

  Output added{id};
  bind(wl_output_interface, 4, added.proxy);
  if (added.proxy) {
    Output& output = outputs.emplace_back(std::move(added));
    wl_output_add_listener(output.proxy.get(), &outputListener, &output);
  }
  for (Output& output : outputs) {
    if (output.details || !outputDetails) continue;
    output.details.reset(zxdg_output_manager_v1_get_xdg_output(outputDetails.get(), output.proxy.get()));
    zxdg_output_v1_add_listener(output.details.get(), &detailsListener, &output);
  }
}

void Display::remove(std::uint32_t id) {
  outputs.remove_if([id](const Output& output) { return output.id == id; });
}

void Display::dispatch() {
  while (wl_display_prepare_read(connection.get()) != 0) check(wl_display_dispatch_pending(connection.get()));
  check(wl_display_read_events(connection.get()));
  check(wl_display_dispatch_pending(connection.get()));
}

void Display::check(int result) const {
  if (result >= 0) return;
  const int error = wl_display_get_error(connection.get());
  if (error == EPIPE || error == ECONNRESET)
    throw program::Failure{EX_UNAVAILABLE, "the display disappeared"};
  if (error != EPROTO && error != EINVAL && error != EFAULT)  // those three are errors of the protocol
    throw program::Failure{
        EX_OSERR, std::string{"the connection to the Wayland display broke: "} + std::strerror(error)};
  throw program::Failure{EX_PROTOCOL,
                         "the Wayland compositor refused a request; WAYLAND_DEBUG=1 shows which one"};
}

}  // namespace desktop::wayland
