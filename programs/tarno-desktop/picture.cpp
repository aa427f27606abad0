#include "tarno-desktop/picture.hpp"

#include <sys/mman.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>

namespace desktop {

std::string scaleText(double scale) {
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.begin(), text.end(), scale).ptr};
}

MappedPicture::MappedPicture(const Picture& picture) : picture_(picture) {
  void* const start = mmap(nullptr, picture.size(), PROT_READ, MAP_SHARED, picture.memory.get(), 0);
  if (start == MAP_FAILED)
    throw std::system_error{errno, std::generic_category(), "cannot map the tile's picture"};
  bytes_ = {static_cast<const std::byte*>(start), picture.size()};
}

MappedPicture::~MappedPicture() { munmap(const_cast<std::byte*>(bytes_.data()), bytes_.size()); }

std::span<const std::uint32_t> MappedPicture::row(int y) const {
  const void* const start = bytes_.data() + static_cast<std::ptrdiff_t>(y) * picture_.stride;
  return {static_cast<const std::uint32_t*>(start), static_cast<std::size_t>(picture_.width)};
}

}  // namespace desktop
