#pragma once

#include <cstddef>
#include <cstdint>

#include "tarno/render/image.hpp"

namespace extension {

/// Memory that this program shares with its caller, as the pixels of one image. Mapped while it lives.
class SharedPixels {
 public:
  /// Gives the memory behind `descriptor` the size of `size` pixels, all transparent, and seals it against
  /// shrinking, so that whoever maps it can read all of them at any time. The descriptor stays open.
  /// Throws program::Failure: EX_USAGE when it is no memory that can be sealed (memfd_create(2) with
  /// MFD_ALLOW_SEALING) or was sealed before, EX_OSERR when there is not enough memory.
  SharedPixels(int descriptor, render::PixelSize size);
  ~SharedPixels();
  SharedPixels(const SharedPixels&) = delete;
  SharedPixels& operator=(const SharedPixels&) = delete;

  std::uint32_t* data() const { return static_cast<std::uint32_t*>(memory_); }

  /// From the start of one row to that of the next, in bytes.
  std::size_t stride() const { return stride_; }

 private:
  std::size_t stride_;
  std::size_t length_;
  void* memory_;
};

}  // namespace extension
