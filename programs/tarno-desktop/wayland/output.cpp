#include "wayland/output.hpp"

#include <utility>

namespace desktop::wayland {

Output::Output(std::uint32_t id, Proxy<wl_output> output) : id_(id), output_(std::move(output)) {
  static constexpr auto at = [](void* self) -> Output& { return *static_cast<Output*>(self); };
  static constexpr wl_output_listener listener{
      .geometry = [](void* self, wl_output*, int, int, int, int, int, const char*, const char*,
                     int transform) { at(self).next_.isTurned = (transform & WL_OUTPUT_TRANSFORM_90) != 0; },
      .mode =
          [](void* self, wl_output*, std::uint32_t flags, int width, int height, int) {
            if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) at(self).next_.mode = {width, height};
          },
      .done = [](void* self, wl_output*) { at(self).now_ = at(self).next_; },
      .scale = [](void* self, wl_output*, int factor) { at(self).next_.scale = factor; },
      .name = [](void* self, wl_output*, const char* name) { at(self).next_.name = name; },
      .description = [](void*, wl_output*, const char*) {}};
  wl_output_add_listener(output_.get(), &listener, this);
}

void Output::askForDetails(zxdg_output_manager_v1* manager) {
  static constexpr auto at = [](void* self) -> Output& { return *static_cast<Output*>(self); };
  static constexpr zxdg_output_v1_listener listener{
      .logical_position =
          [](void* self, zxdg_output_v1*, int x, int y) {
            at(self).next_.x = x;
            at(self).next_.y = y;
          },
      .logical_size =
          [](void* self, zxdg_output_v1*, int width, int height) {
            at(self).next_.points = {width, height};
          },
      .done = [](void* self, zxdg_output_v1*) { at(self).now_ = at(self).next_; },  // up to version 2
      .name = [](void* self, zxdg_output_v1*, const char* name) { at(self).next_.name = name; },
      .description = [](void*, zxdg_output_v1*, const char*) {}};
  if (details_) return;
  details_.reset(zxdg_output_manager_v1_get_xdg_output(manager, output_.get()));
  zxdg_output_v1_add_listener(details_.get(), &listener, this);
}

MonitorInfo Output::info() const {
  const auto& [name, mode, isTurned, scale, x, y, points] = now_;
  const Extent pixels = isTurned ? Extent{mode.height, mode.width} : mode;
  const bool isMeasured = points.width > 0 && points.height > 0 && pixels.width > 0;
  return {name, {x, y, pixels.width, pixels.height}, isMeasured ? outputScale(pixels, points) : scale};
}

}  // namespace desktop::wayland
