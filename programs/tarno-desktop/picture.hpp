#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "foundation/file_descriptor.hpp"

namespace desktop {

/// A picture of the tile in shared memory: rows of premultiplied ARGB, 32-bit words in the machine's byte
/// order, from the top. Sealed against shrinking, so that it can be mapped without fear. Nobody writes to it
/// once it is shared with a surface.
struct Picture {
  foundation::FileDescriptor memory;  ///< a memfd of at least `stride` * `height` bytes
  int width = 0, height = 0;          ///< in pixels
  int stride = 0;                     ///< in bytes, at least 4 * `width`
  double scale = 1;                   ///< pixels per point

  std::size_t size() const { return static_cast<std::size_t>(stride) * static_cast<std::size_t>(height); }
};

/// "1.5", "2": as few digits as name `scale` exactly, in every locale.
std::string scaleText(double scale);

/// A picture's pixels, readable while this lives.
class MappedPicture {
 public:
  /// Throws std::system_error when the memory cannot be mapped.
  explicit MappedPicture(const Picture& picture);
  ~MappedPicture();
  MappedPicture(const MappedPicture&) = delete;
  MappedPicture& operator=(const MappedPicture&) = delete;

  std::span<const std::byte> bytes() const { return bytes_; }

  /// The row of pixels `y` lines below the top.
  std::span<const std::uint32_t> row(int y) const;

 private:
  const Picture& picture_;
  std::span<const std::byte> bytes_;
};

}  // namespace desktop
