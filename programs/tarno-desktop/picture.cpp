#include "tarno/tarno-desktop/picture.hpp"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <tuple>

namespace desktop {

std::vector<std::uint32_t> pixelsOf(const Picture& picture) {
  std::vector<std::uint32_t> pixels(picture.size() / 4);
  if (pread(picture.memory.get(), pixels.data(), picture.size(), 0) != static_cast<ssize_t>(picture.size()))
    throw std::system_error{errno, std::generic_category(), "cannot read the tile's picture"};
  return pixels;
}

bool operator==(const Picture& a, const Picture& b) {
  const auto shape = [](const Picture& picture) {
    return std::tuple{picture.width, picture.height, picture.stride, picture.scale};
  };
  return shape(a) == shape(b) && pixelsOf(a) == pixelsOf(b);
}

}  // namespace desktop
