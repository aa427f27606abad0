#include "wayland/buffer.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <system_error>

namespace desktop::wayland {
namespace {

std::shared_ptr<const Picture> grown(const Picture& picture, Extent size, const Anchor& anchor) {
  const auto larger = std::make_shared<Picture>(
      Picture{foundation::FileDescriptor{memfd_create("tile", MFD_CLOEXEC | MFD_ALLOW_SEALING)}, size.width,
              size.height, 4 * size.width, picture.scale});
  const int memory = larger->memory.get();
  bool isDone = ftruncate(memory, static_cast<off_t>(larger->size())) == 0;
  const long left = std::lround((size.width - picture.width) * anchor.x);
  const long top = std::lround((size.height - picture.height) * anchor.y);
  const MappedPicture pixels{picture};
  for (int y = 0; y < picture.height && isDone; ++y) {
    const auto row = pixels.row(y);
    isDone = pwrite(memory, row.data(), row.size_bytes(), (top + y) * larger->stride + 4 * left) ==
             static_cast<ssize_t>(row.size_bytes());
  }
  if (!isDone || fcntl(memory, F_ADD_SEALS, F_SEAL_SHRINK) != 0)
    throw std::system_error{errno, std::generic_category(), "cannot make a buffer"};
  return larger;
}

}  // namespace

Buffer::Buffer(wl_shm* memory, std::shared_ptr<const Picture> picture, Extent size, const Anchor& anchor)
    : picture_(std::move(picture)) {
  if (size != Extent{picture_->width, picture_->height}) picture_ = grown(*picture_, size, anchor);
  const Proxy<wl_shm_pool> pool{
      wl_shm_create_pool(memory, picture_->memory.get(), static_cast<int>(picture_->size()))};
  buffer_.reset(wl_shm_pool_create_buffer(pool.get(), 0, size.width, size.height, picture_->stride,
                                          WL_SHM_FORMAT_ARGB8888));
  static constexpr wl_buffer_listener listener{
      .release = [](void* self, wl_buffer*) { static_cast<Buffer*>(self)->isReleased_ = true; }};
  wl_buffer_add_listener(buffer_.get(), &listener, this);
}

}  // namespace desktop::wayland
