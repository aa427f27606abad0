#pragma once

#include <cstdint>
#include <vector>

#include "tarno/foundation/file_descriptor.hpp"

namespace desktop {

/// A picture of the tile in shared memory: rows of premultiplied ARGB, 32-bit words in the machine's byte
/// order, from the top. Sealed against shrinking, so that a display server may map it without fear. Nobody
/// writes to it once it is shared with a surface.
struct Picture {
  tarno::FileDescriptor memory;  ///< a memfd of at least `stride` * `height` bytes
  int width = 0, height = 0;     ///< in pixels
  int stride = 0;                ///< in bytes, at least 4 * `width`
  double scale = 1;              ///< pixels per point

  std::size_t size() const { return static_cast<std::size_t>(stride) * static_cast<std::size_t>(height); }
};

/// A copy of the `stride` / 4 pixels of each row. Throws std::system_error when they cannot be read.
std::vector<std::uint32_t> pixelsOf(const Picture& picture);

/// Whether two pictures look the same. Throws as pixelsOf() does.
bool operator==(const Picture& a, const Picture& b);

}  // namespace desktop
