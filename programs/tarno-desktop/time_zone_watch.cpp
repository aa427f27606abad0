#include "tarno-desktop/time_zone_watch.hpp"

#include <glib-unix.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <ctime>

namespace desktop {

TimeZoneWatch::TimeZoneWatch(std::function<void()> changed, std::filesystem::path zone)
    : changed_(std::move(changed)),
      zone_(std::move(zone)),
      descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  const auto folder = zone_.parent_path();
  if (descriptor_ < 0 ||
      inotify_add_watch(descriptor_, folder.c_str(), IN_CREATE | IN_MOVED_TO | IN_CLOSE_WRITE) < 0)
    return;
  const auto onReady = [](int, GIOCondition, gpointer self) -> gboolean {
    static_cast<TimeZoneWatch*>(self)->readEvents();
    return G_SOURCE_CONTINUE;
  };
  source_ = g_unix_fd_add(descriptor_, G_IO_IN, onReady, this);
}

TimeZoneWatch::~TimeZoneWatch() {
  if (source_ != 0) g_source_remove(source_);
  if (descriptor_ >= 0) close(descriptor_);
}

void TimeZoneWatch::readEvents() {
  alignas(inotify_event) char buffer[4096];
  const auto name = zone_.filename();
  bool isOurs = false;
  for (ssize_t size; (size = read(descriptor_, buffer, sizeof buffer)) > 0;) {
    for (const char* at = buffer; at < buffer + size;) {
      const void* record = at;
      const auto* event = static_cast<const inotify_event*>(record);
      isOurs |= event->len != 0 && name == event->name;
      at += sizeof *event + event->len;
    }
  }
  if (!isOurs) return;
  tzset();
  changed_();
}

}  // namespace desktop
