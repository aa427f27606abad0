#pragma once

#include <memory>

#include "tarno-desktop/picture.hpp"
#include "tarno-desktop/placement.hpp"
#include "wayland/proxy.hpp"
#include "wayland/scale.hpp"

namespace desktop::wayland {

/// A picture lent to the compositor, which reads it from the memory that the extension's process drew into.
class Buffer {
 public:
  /// A buffer of `size` pixels, at least the picture's; what it has more is transparent, on the sides away
  /// from `anchor`. Throws std::system_error when there is no memory for a larger one.
  Buffer(wl_shm* memory, std::shared_ptr<const Picture> picture, Extent size, const Anchor& anchor);
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  wl_buffer* get() const { return buffer_.get(); }

  /// The compositor does not read it any more.
  bool isReleased() const { return isReleased_; }

 private:
  std::shared_ptr<const Picture> picture_;
  Proxy<wl_buffer> buffer_;
  bool isReleased_ = false;
};

}  // namespace desktop::wayland
