#pragma once

#include <cstdint>
#include <span>

#include "tarno/foundation/file_descriptor.hpp"

namespace desktop {

/// Returns empty shared memory for a picture. Throws std::system_error if the system has none left.
tarno::FileDescriptor makePictureMemory();

/// The layout of a picture in memory, and its scale.
struct PictureLayout {
  int width = 0, height = 0;  ///< in pixels
  int stride = 0;             ///< the distance between two rows, in bytes; at least 4 * `width`
  double scale = 1;           ///< pixels per point

  std::size_t size() const { return static_cast<std::size_t>(stride) * static_cast<std::size_t>(height); }
  friend bool operator==(const PictureLayout&, const PictureLayout&) = default;
};

/// A picture of the tile in shared memory: rows of premultiplied ARGB, 32-bit words in the machine's byte
/// order, from the top. Mapped as long as this object lives, and sealed against shrinking, so that a display
/// server can also map it safely. Nobody writes to it.
class Picture : public PictureLayout {
 public:
  /// Maps `memory`, a memfd. Throws std::runtime_error if it is smaller than the layout says or not sealed,
  /// std::system_error if it cannot be mapped.
  Picture(tarno::FileDescriptor memory, const PictureLayout& layout);
  Picture(Picture&&) = delete;
  ~Picture();

  int descriptor() const { return memory_.get(); }

  /// Returns the `width` pixels of row `y`.
  std::span<const std::uint32_t> row(int y) const;

  /// Returns a hash of the pixels.
  std::size_t hash() const;

 private:
  const tarno::FileDescriptor memory_;
  void* pixels_ = nullptr;
};

}  // namespace desktop
