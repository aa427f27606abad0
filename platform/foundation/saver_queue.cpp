#include "tarno/foundation/saver_queue.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace tarno {
namespace {

constexpr const char* fileName = ".defaults.json.queue";

/// The number of places. Each place is one byte of the file, which the process in that place has locked. A
/// process locks the byte in front before it unlocks its own, so that nobody overtakes. A process that finds
/// the last place taken tries again later.
constexpr int places = 64;

struct flock bytes(short type, int first, int count) {
  return {.l_type = type, .l_whence = SEEK_SET, .l_start = first, .l_len = count, .l_pid = 0};
}

bool set(const FileDescriptor& file, struct flock lock) { return fcntl(file.get(), F_OFD_SETLK, &lock) == 0; }

}  // namespace

bool SaverQueue::exists(int folder) { return faccessat(folder, fileName, F_OK, 0) == 0; }

SaverQueue::SaverQueue(int folder)
    : file_(openat(folder, fileName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600)),
      folder_(folder),
      place_(places) {}

SaverQueue::~SaverQueue() {
  if (!file_) return;
  // Closing the file does not unlock it while a child process from fork() has a copy of the descriptor.
  set(file_, bytes(F_UNLCK, 0, places));
  auto other = bytes(F_WRLCK, 0, places);
  if (fcntl(file_.get(), F_OFD_GETLK, &other) == 0 && other.l_type == F_UNLCK) unlinkat(folder_, fileName, 0);
}

bool SaverQueue::isFirst() {
  while (place_ > 0) {
    if (!set(file_, bytes(F_WRLCK, place_ - 1, 1))) return errno != EAGAIN && errno != EACCES;
    if (place_ < places) set(file_, bytes(F_UNLCK, place_, 1));
    --place_;
  }
  return true;
}

}  // namespace tarno
