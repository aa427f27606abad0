#include "tarno/tarno-desktop/picture.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace desktop {
namespace {

/// Returns whether all of a picture can be mapped, and nobody can shrink its memory.
bool isSafe(int memory, const PictureLayout& layout) {
  struct stat file {};
  const int seals = fcntl(memory, F_GET_SEALS);
  return layout.width > 0 && layout.height > 0 && layout.stride % 4 == 0 &&
         layout.stride / 4 >= layout.width && fstat(memory, &file) == 0 &&
         layout.size() <= static_cast<std::size_t>(file.st_size) && seals >= 0 &&
         (seals & F_SEAL_SHRINK) != 0;
}

}  // namespace

tarno::FileDescriptor makePictureMemory() {
  tarno::FileDescriptor memory{memfd_create("tarno-tile", MFD_CLOEXEC | MFD_ALLOW_SEALING)};
  if (!memory) throw std::system_error{errno, std::generic_category(), "cannot create memory for a picture"};
  return memory;
}

Picture::Picture(tarno::FileDescriptor memory, const PictureLayout& layout)
    : PictureLayout(layout), memory_(std::move(memory)) {
  if (!isSafe(descriptor(), layout))
    throw std::runtime_error{"the picture does not have the size that the answer states, or is not sealed"};
  pixels_ = mmap(nullptr, size(), PROT_READ, MAP_SHARED, descriptor(), 0);
  if (pixels_ == MAP_FAILED)
    throw std::system_error{errno, std::generic_category(), "cannot map the tile's picture"};
}

Picture::~Picture() { munmap(pixels_, size()); }

std::span<const std::uint32_t> Picture::row(int y) const {
  const auto start = static_cast<std::size_t>(stride) / 4 * static_cast<std::size_t>(y);
  return {static_cast<const std::uint32_t*>(pixels_) + start, static_cast<std::size_t>(width)};
}

std::size_t Picture::hash() const {
  return std::hash<std::string_view>{}({static_cast<const char*>(pixels_), size()});
}

}  // namespace desktop
