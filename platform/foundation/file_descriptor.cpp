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

}  // namespace tarno
