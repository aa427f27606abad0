#pragma once

#include <string>

#include "tarno-desktop/options.hpp"
#include "wayland/tile_surface.hpp"

namespace desktop::wayland {

/// The tile in one of the layers of a monitor, below all windows or above them. It lets clicks through and
/// never has the keyboard.
class LayerSurface final : public TileSurface {
 public:
  LayerSurface(const Globals& globals, wl_output* output, const Options& options);

  void raise(bool isRaised) override;

 private:
  void resize(Extent size) override;

  Proxy<zwlr_layer_surface_v1> surface_;
  zwlr_layer_shell_v1_layer layer_;
  bool isRaised_ = false;
};

}  // namespace desktop::wayland
