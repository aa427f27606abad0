#include "tarno/tarno-widget/shared_pixels.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tarno/common/failure.hpp"

namespace extension {
namespace {

program::Failure failed(int exitCode, int descriptor, const char* what) {
  return {exitCode, "descriptor " + std::to_string(descriptor) + " " + what + ": " + std::strerror(errno)};
}

}  // namespace

SharedPixels::SharedPixels(int descriptor, render::PixelSize size)
    : stride_(static_cast<std::size_t>(size.width) * sizeof(std::uint32_t)),
      length_(stride_ * static_cast<std::size_t>(size.height)) {
  // Adding no seal succeeds only if the memory can be sealed.
  if (fcntl(descriptor, F_ADD_SEALS, 0) != 0)
    throw failed(EX_USAGE, descriptor, "is not a memfd that allows sealing");
  const auto length = static_cast<off_t>(length_);
  if (ftruncate(descriptor, 0) != 0 || ftruncate(descriptor, length) != 0)
    throw failed(EX_USAGE, descriptor, "cannot be set to the size of the image");
  // Without this, running out of memory while drawing would raise SIGBUS.
  errno = posix_fallocate(descriptor, 0, length);
  if (errno != 0) throw failed(EX_OSERR, descriptor, "cannot hold the image");
  if (fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK) != 0)
    throw failed(EX_OSERR, descriptor, "cannot be sealed");
  memory_ = mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (memory_ == MAP_FAILED) throw failed(EX_OSERR, descriptor, "cannot be mapped");
}

SharedPixels::~SharedPixels() { munmap(memory_, length_); }

}  // namespace extension
