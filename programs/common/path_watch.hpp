#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Calls back when the file at a path is created, replaced, written or removed, or its permissions change.
/// The folders above the file may appear, disappear or move. It watches only the folder of the file, or the
/// nearest folder above that exists, and so ignores everything else. It does not notice changes behind a
/// broken link. If the system cannot watch the path, it calls back every 5 s until the system can, and prints
/// the reason on standard error, once for all watches of the program.
class PathWatch final : public EventSource {
 public:
  explicit PathWatch(std::function<void()> changed);
  ~PathWatch() override;

  /// Watches the file at `path` (absolute) instead of the previous one. Returns whether the path has changed.
  bool follow(const std::filesystem::path& path);

  Wait prepare() override { return {{{inotify_.get(), POLLIN, 0}}, nextLook_}; }
  void dispatch(short events) override;

 private:
  void watchAnew();
  int watchFolders();

  std::function<void()> changed_;
  tarno::FileDescriptor inotify_;
  std::filesystem::path path_;
  std::vector<int> watches_;
  Clock::time_point nextLook_ = Clock::time_point::max();  ///< the next attempt; max() while it watches
  std::filesystem::path awaited_;  ///< the next part of the path below the nearest folder that exists
};

}  // namespace program
