#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "common/event_loop.hpp"
#include "foundation/file_descriptor.hpp"
#include "tarno-desktop/frame.hpp"

namespace desktop {

using program::EventSource;

/// What `tarno-widget frame` is asked for.
struct FrameRequest {
  std::filesystem::path program;  ///< where it cannot be run, the one of its name in PATH takes its place
  std::string family = "medium";
  double scale = 1;               ///< pixels per point
  std::optional<std::string> at;  ///< RFC 3339; the tile's clock stands still there
};

/// What became of a request.
struct FrameAnswer {
  std::optional<Frame> frame;
  std::string failure;  ///< why there is no frame
  std::string errors;   ///< whole lines that the process wrote to standard error, at most a pipe full
};

/// The extension's process, one at a time. Whatever it does, at most the picture is missing: after 10 s it is
/// ended.
class FrameProcess final : public EventSource {
 public:
  explicit FrameProcess(std::function<void(FrameAnswer)> completion) : completion_(std::move(completion)) {}
  ~FrameProcess() override;
  FrameProcess(const FrameProcess&) = delete;
  FrameProcess& operator=(const FrameProcess&) = delete;

  /// Starts the process; none is running. The completion is called once, from here when there is no process.
  void start(const FrameRequest& request);

  bool isRunning() const { return static_cast<bool>(process_); }

  Wait prepare() override { return {process_.get()}; }
  void dispatch(short events) override;

 private:
  void spawn(const FrameRequest& request);
  void stop() const;
  FrameAnswer answer(int status);

  std::function<void(FrameAnswer)> completion_;
  foundation::FileDescriptor memory_, output_, errors_;
  foundation::FileDescriptor process_;  ///< a pidfd while a process is running
  pid_t pid_ = -1;
  double scale_ = 1;
};

}  // namespace desktop
