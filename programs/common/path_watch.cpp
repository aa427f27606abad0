#include "tarno/common/path_watch.hpp"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace program {
namespace {

constexpr unsigned itself = IN_DELETE_SELF | IN_MOVE_SELF | IN_ATTRIB;
constexpr unsigned names = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CLOSE_WRITE | IN_ATTRIB;

}  // namespace

PathWatch::PathWatch(std::function<void()> changed)
    : changed_(std::move(changed)), inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

bool PathWatch::follow(const std::filesystem::path& path) {
  if (path == path_) return false;
  path_ = path;
  watchAnew();
  return true;
}

void PathWatch::watchAnew() {
  for (const int watch : watches_) inotify_rm_watch(inotify_.get(), watch);
  isExhausted_ = false;
  do watches_.clear();
  while (!watchFolders());
}

/// False when a folder came or went meanwhile.
bool PathWatch::watchFolders() {
  const auto watch = [this](const std::filesystem::path& path, unsigned events) {
    const int added = inotify_add_watch(inotify_.get(), path.c_str(), events | IN_MASK_ADD);
    if (added >= 0) watches_.push_back(added);
    isExhausted_ |= added < 0 && (errno == ENOSPC || errno == ENOMEM);
    return added >= 0;
  };
  std::filesystem::path nearest;
  bool isMissing = false;
  for (const auto& name : path_) {
    awaited_ = nearest / name;
    if (awaited_ == path_) break;
    watch(awaited_, itself | IN_DONT_FOLLOW);  // a link may be replaced, too
    const bool isWatched = watch(awaited_, itself | IN_ONLYDIR);
    isMissing = !isWatched && errno == ENOENT;
    if (!isWatched && errno != EACCES) break;  // what lies in a folder that cannot be read may be readable
    nearest = awaited_;
  }
  const bool hasGone = !watch(nearest, names | IN_ONLYDIR) && errno == ENOENT;
  const bool hasCome = isMissing && access(awaited_.c_str(), F_OK) == 0;
  return !hasGone && !hasCome;
}

void PathWatch::dispatch(short events) {
  bool isChanged = false, isElsewhere = false;
  alignas(inotify_event) char buffer[4096];
  for (ssize_t size; events != 0 && (size = read(inotify_.get(), buffer, sizeof buffer)) > 0;) {
    for (const char* at = buffer; at < buffer + size;) {
      const void* const record = at;
      const auto& event = *static_cast<const inotify_event*>(record);
      at += sizeof event + event.len;
      const bool isOurs = std::find(watches_.begin(), watches_.end(), event.wd) != watches_.end();
      const bool isLost = (event.mask & IN_Q_OVERFLOW) != 0;  // events, and with them the way
      if (!isOurs && !isLost) continue;
      const bool isNamed = event.len != 0 && awaited_.filename() == event.name;
      isElsewhere |= event.len == 0 || (isNamed && awaited_ != path_);
      isChanged |= isElsewhere || isNamed;
    }
  }
  if (isElsewhere) watchAnew();
  if (isChanged) changed_();
}

}  // namespace program
