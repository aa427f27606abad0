#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Tells when the file at a path is made, replaced, written, removed or given other permissions, whichever of
/// the folders above it come, go, move or change theirs meanwhile. It sleeps through whatever else happens:
/// only the folder of the file, or the nearest one that exists, is watched for names. Where the system has no
/// watch left, it tells nothing, and isWatching() says so. What comes where a link leads to nothing goes
/// unnoticed.
class PathWatch final : public EventSource {
 public:
  explicit PathWatch(std::function<void()> changed);

  /// Watches the file at `path`, absolute, in place of the one before. Returns whether it was another.
  bool follow(const std::filesystem::path& path);

  /// Whether changes will be told: false when the system has no watch left.
  bool isWatching() const { return inotify_ && !isExhausted_; }

  Wait prepare() override { return {{{inotify_.get(), POLLIN, 0}}}; }
  void dispatch(short events) override;

 private:
  void watchAnew();
  bool watchFolders();

  std::function<void()> changed_;
  tarno::FileDescriptor inotify_;
  std::filesystem::path path_;
  std::vector<int> watches_;
  bool isExhausted_ = false;
  std::filesystem::path awaited_;  ///< what lies on the way to the file, in the nearest folder that exists
};

}  // namespace program
