#pragma once

#include <cstddef>
#include <cstdint>

#include "tarno/render/image.hpp"

namespace extension {

/// The pixels of an image in memory that this program shares with its caller. Mapped as long as this object
/// lives.
class SharedPixels {
 public:
  /// Resizes the memory behind `descriptor` to `size` pixels, all transparent, and seals it against
  /// shrinking, so that whoever maps it can always read all of it. The descriptor stays open. Throws
  /// program::Failure: EX_USAGE if the memory does not allow sealing (see MFD_ALLOW_SEALING in
  /// memfd_create(2)) or is sealed already, EX_OSERR if there is not enough memory.
  SharedPixels(int descriptor, render::PixelSize size);
  ~SharedPixels();
  SharedPixels(const SharedPixels&) = delete;
  SharedPixels& operator=(const SharedPixels&) = delete;

  std::uint32_t* data() const { return static_cast<std::uint32_t*>(memory_); }

  /// The distance between two rows, in bytes.
  std::size_t stride() const { return stride_; }

 private:
  std::size_t stride_;
  std::size_t length_;
  void* memory_;
};

}  // namespace extension
