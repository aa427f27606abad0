#pragma once

#include <string>

#include "wayland/tile_surface.hpp"

namespace desktop::wayland {

/// The tile as a window without a frame, which the pointer drags. The compositor places and stacks it.
class PlainWindow final : public TileSurface {
 public:
  explicit PlainWindow(const Globals& globals);

  void setTitle(const std::string& title) override;

 private:
  void resize(Extent size) override;
  void followPointer(std::uint32_t capabilities);

  Proxy<xdg_surface> window_;
  Proxy<xdg_toplevel> toplevel_;
  Proxy<zxdg_toplevel_decoration_v1> decoration_;
  Proxy<wl_seat> seat_;
  Proxy<wl_pointer> pointer_;
};

}  // namespace desktop::wayland
