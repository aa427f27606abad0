#pragma once

#include <filesystem>
#include <functional>

namespace desktop {

/// Calls back when the system's time zone is changed, in the GLib main loop of the thread that made it. Where
/// the file cannot be watched it never calls back.
class TimeZoneWatch {
 public:
  /// `zone` is the file or link that names the zone; its folder is watched, because a change replaces it.
  explicit TimeZoneWatch(std::function<void()> changed, std::filesystem::path zone = "/etc/localtime");
  ~TimeZoneWatch();
  TimeZoneWatch(const TimeZoneWatch&) = delete;
  TimeZoneWatch& operator=(const TimeZoneWatch&) = delete;

 private:
  void readEvents();

  std::function<void()> changed_;
  std::filesystem::path zone_;
  int descriptor_;
  unsigned source_ = 0;
};

}  // namespace desktop
