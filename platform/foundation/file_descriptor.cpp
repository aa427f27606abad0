#include "tarno/foundation/file_descriptor.hpp"

#include <unistd.h>

#include <cerrno>

namespace tarno {

void FileDescriptor::close() {
  if (value_ < 0) return;
  const int kept = errno;
  ::close(value_);
  errno = kept;
  value_ = -1;
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace tarno
