#pragma once

#include <list>
#include <memory>
#include <optional>
#include <string>

#include "wayland/buffer.hpp"
#include "wayland/connection.hpp"

namespace desktop::wayland {

/// A Wayland surface that shows pictures of the tile; what kind of surface it is, its subclasses say. The
/// compositor's word is only noted, for the owner to ask.
class TileSurface {
 public:
  virtual ~TileSurface() = default;
  TileSurface(const TileSurface&) = delete;
  TileSurface& operator=(const TileSurface&) = delete;

  /// The compositor is ready for the first picture.
  bool isConfigured() const { return isConfigured_; }

  /// The surface is gone: with its monitor, or because somebody closed it.
  bool isClosed() const { return isClosed_; }

  /// In pixels per point. Nothing when the compositor does not say.
  std::optional<double> preferredScale() const { return preferredScale_; }

  /// The output that the surface came to last; null for none.
  wl_output* output() const { return output_; }

  /// False while the compositor holds as many pictures as it may.
  bool canShow();

  void show(std::shared_ptr<const Picture> picture, const Fit& fit);

  virtual void setTitle(const std::string&) {}

  /// Above everything else, or back in its place.
  virtual void raise(bool) {}

 protected:
  /// What a picture has less than its surface lies on the sides away from `anchor`.
  TileSurface(const Globals& globals, const Anchor& anchor);

  wl_surface* get() const { return surface_.get(); }

  /// To be called when the compositor has configured the surface.
  void configured();
  void closed() { isClosed_ = true; }

 private:
  /// Told before the commit that shows a picture: the surface is `size` large from then on.
  virtual void resize(Extent size) = 0;

  const Globals& globals_;
  Anchor anchor_;
  std::list<Buffer> buffers_;  // outlive the surface that shows them
  Proxy<wl_surface> surface_;
  Proxy<wp_viewport> viewport_;
  Proxy<wp_fractional_scale_v1> fractionalScale_;
  std::optional<double> preferredScale_;
  wl_output* output_ = nullptr;
  bool isConfigured_ = false;
  bool isClosed_ = false;
};

}  // namespace desktop::wayland
