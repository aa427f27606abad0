#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Tells when the file at a path is made, replaced, written, removed or given other permissions, whichever of
/// the folders above it come, go, move or change theirs meanwhile. It sleeps through whatever else happens:
/// only the folder of the file, or the nearest one that exists, is watched for names. Changes behind a link
/// that leads to nothing go unnoticed. Where the system cannot watch the path, it prints the reason on
/// standard error once, and calls back every 5 s until it can.
class PathWatch final : public EventSource {
 public:
  explicit PathWatch(std::function<void()> changed);

  /// Watches the file at `path`, absolute, in place of the one before. Returns whether it was another.
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
  Clock::time_point nextLook_ = Clock::time_point::max();  ///< when it tries again; never while it watches
  std::filesystem::path awaited_;  ///< what lies on the way to the file, in the nearest folder that exists
};

}  // namespace program
