#include "tarno/common/path_watch.hpp"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "tarno/common/failure.hpp"

namespace program {
namespace {

constexpr std::chrono::seconds lookInterval{5};
constexpr auto never = EventSource::Clock::time_point::max();

int lookers = 0;  // the number of watches of the program that can only look every few seconds

constexpr unsigned itself = IN_DELETE_SELF | IN_MOVE_SELF | IN_ATTRIB;
constexpr unsigned names = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CLOSE_WRITE | IN_ATTRIB;

}  // namespace

PathWatch::PathWatch(std::function<void()> changed) : changed_(std::move(changed)) {}

PathWatch::~PathWatch() { lookers -= nextLook_ != never; }

bool PathWatch::follow(const std::filesystem::path& path) {
  if (path == path_) return false;
  path_ = path;
  watchAnew();
  return true;
}

void PathWatch::watchAnew() {
  constexpr int mostAttempts = 100;
  if (!inotify_) inotify_ = tarno::FileDescriptor{inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
  int fault = inotify_ ? EAGAIN : errno;
  for (const int watch : watches_) inotify_rm_watch(inotify_.get(), watch);
  for (int attempt = 0; attempt < mostAttempts && fault == EAGAIN; ++attempt) {
    watches_.clear();
    fault = watchFolders();
  }
  const bool isBlind = fault != 0, wasBlind = nextLook_ != never;
  nextLook_ = isBlind ? Clock::now() + lookInterval : never;
  if (isBlind && !wasBlind && lookers == 0) {
    const auto* const reason =
        fault == ENOSPC ? "the system has no inotify watch left" : std::strerror(fault);
    complain("cannot watch " + path_.string() + ", so looks for changes every 5 s: " + reason);
  }
  lookers += isBlind - wasBlind;
}

/// Watches the folders of the path. Returns 0, or the error because of which changes would go unnoticed:
/// EAGAIN if a folder appeared or disappeared meanwhile.
int PathWatch::watchFolders() {
  const auto watch = [this](const std::filesystem::path& path, unsigned events) {
    const int added = inotify_add_watch(inotify_.get(), path.c_str(), events | IN_MASK_ADD);
    if (added >= 0) watches_.push_back(added);
    return added >= 0 ? 0 : errno;
  };
  const auto isExhausted = [](int error) { return error == ENOSPC || error == ENOMEM; };
  std::filesystem::path nearest;
  bool isMissing = false;
  for (const auto& name : path_) {
    awaited_ = nearest / name;
    if (awaited_ == path_) break;
    const int linkError = watch(awaited_, itself | IN_DONT_FOLLOW);  // notices when a link is replaced
    const int error = watch(awaited_, itself | IN_ONLYDIR);
    if (isExhausted(linkError) || isExhausted(error)) return ENOSPC;
    isMissing = error == ENOENT;
    if (error != 0 && error != EACCES)
      break;  // files in a folder that cannot be listed may still be readable
    nearest = awaited_;
  }
  const int error = watch(nearest, names | IN_ONLYDIR);
  const bool hasCome = isMissing && access(awaited_.c_str(), F_OK) == 0;
  return error == ENOENT || hasCome ? EAGAIN : error;
}

void PathWatch::dispatch(short events) {
  const bool isDue = Clock::now() >= nextLook_;
  bool isChanged = isDue, isElsewhere = isDue;
  alignas(inotify_event) char buffer[4096];
  for (ssize_t size; events != 0 && (size = read(inotify_.get(), buffer, sizeof buffer)) > 0;) {
    for (const char* at = buffer; at < buffer + size;) {
      const void* const record = at;
      const auto& event = *static_cast<const inotify_event*>(record);
      at += sizeof event + event.len;
      const bool isOurs = std::find(watches_.begin(), watches_.end(), event.wd) != watches_.end();
      const bool isLost =
          (event.mask & IN_Q_OVERFLOW) != 0;  // events were lost, perhaps about the folders of the path
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
