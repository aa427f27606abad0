#pragma once

#include <list>
#include <memory>
#include <string>

#include "tarno-desktop/options.hpp"
#include "tarno-desktop/picture.hpp"
#include "wayland/display.hpp"

namespace desktop::wayland {

/// The length in points of a surface's side that shows `pixels` at `scale` pixels per point, pixel by pixel.
/// At a fractional scale a whole number of points may end within a pixel: this is the shortest that does not,
/// if there is one, for a picture that is grown to it. Compositors put both edges on the next pixel, so that
/// such a surface is sharp wherever it stands.
int surfaceSide(int pixels, double scale);

/// A Wayland surface that shows pictures of the tile.
class TileSurface {
 public:
  /// In a layer of `output`, where clicks pass through it; without an output, a window without a frame, which
  /// the pointer drags. `display` and `options` outlive it.
  TileSurface(const Display& display, const Options& options, wl_output* output);
  TileSurface(TileSurface&&) = delete;  // events find it where it is

  /// It is gone: with its monitor, or because somebody closed it.
  bool isClosed() const { return isClosed_; }

  /// In pixels per point; 0 when the compositor does not say.
  double preferredScale() const { return scaleParts_ / 120.0; }

  /// The one whose layer it is in, or that the window came to last; null for none.
  wl_output* output() const { return output_; }

  /// Shows `picture`, `scale` of its pixels to a point, when it does not yet and the compositor is ready;
  /// `title` is that of a window. Throws std::system_error when there is no memory.
  void show(const std::shared_ptr<const Picture>& picture, double scale, const std::string& title);

  /// Puts it above everything else, or back in the bottom layer.
  void raise(bool isRaised);

 private:
  /// A picture lent to the compositor, which reads it from the memory that the extension's process drew into.
  struct Buffer {
    std::shared_ptr<const Picture> picture;
    Proxy<wl_buffer> proxy;
    bool isReleased = false;
  };

  void becomeLayer(wl_output* output);
  void becomeWindow();
  void followPointer(std::uint32_t capabilities);
  void drag(std::uint32_t serial, std::uint32_t time, std::uint32_t button, std::uint32_t state);
  void configured(std::uint32_t serial);
  void close() { isClosed_ = true; }
  void attach(const std::shared_ptr<const Picture>& picture);

  const Display& display_;
  const Options& options_;
  std::shared_ptr<const Picture> picture_;  // that is shown, at
  double scale_ = 0;
  std::list<Buffer> buffers_;  // outlive the surface that shows them
  Proxy<wl_surface> surface_;
  Proxy<wp_viewport> viewport_;
  Proxy<wp_fractional_scale_v1> fractionalScale_;
  Proxy<zwlr_layer_surface_v1> layer_;  // or the next four
  Proxy<xdg_surface> window_;
  Proxy<xdg_toplevel> toplevel_;
  Proxy<wl_seat> seat_;
  Proxy<wl_pointer> pointer_;
  wl_output* output_ = nullptr;
  std::uint32_t scaleParts_ = 0;  // preferredScale(), as its protocol counts
  bool isConfigured_ = false, isClosed_ = false, isRaised_ = false;
};

}  // namespace desktop::wayland
