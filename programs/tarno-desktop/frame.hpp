#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tarno/common/child_process.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/tarno-desktop/picture.hpp"

namespace desktop {

/// What a screen reader finds on the tile; a place in points from the tile's upper left corner.
struct AccessibleElement {
  std::string role;   ///< "image" or "staticText"
  std::string label;  ///< what is read
  double x = 0, y = 0, width = 0, height = 0;

  friend bool operator==(const AccessibleElement&, const AccessibleElement&) = default;
};

/// A tile drawn by the extension's process, and what it said beside the picture.
struct Frame {
  std::shared_ptr<const Picture> picture;
  std::string title;         ///< the widget's name in the user's language
  std::string announcement;  ///< changes only when the status does, not with its age
  std::vector<AccessibleElement> elements;
  tarno::Date reloadDate;
  std::optional<tarno::Date> staleDate;  ///< when the status turns stale; nothing when it will not
  std::filesystem::path storeFile;       ///< absolute, need not exist; empty when nobody knows where it is
};

/// Reads the answer of a frame process that was asked for `scale`, and the picture in `memory`. Trusts
/// neither: throws std::exception unless the picture is as large as the answer says, sealed, and of a tile's
/// size, and the texts are short.
Frame readFrame(const std::string& output, tarno::FileDescriptor memory, double scale);

/// What `tarno-widget frame` is asked for.
struct FrameRequest {
  std::filesystem::path program;  ///< where it cannot be run, the one of its name in PATH takes its place
  std::string family = "medium";
  double scale = 1;               ///< pixels per point
  std::optional<tarno::Date> at;  ///< the tile's clock stands still there
};

/// What became of a frame process.
struct FrameResult {
  std::optional<Frame> frame;
  std::string failure;  ///< why there is no frame
  std::string errors;   ///< what the process has written to standard error
};

/// The extension's process (docs/frame.md) while it draws one frame. Whatever it does, at most the picture is
/// missing: nothing that it answers is trusted, and it has 10 s.
class FrameProcess {
 public:
  /// Starts it. Throws std::system_error when the system has no process, memory or descriptor left.
  explicit FrameProcess(const FrameRequest& request);

  /// Call finish() once it has ended.
  program::ChildProcess& process() { return process_; }

  /// To be called once.
  FrameResult finish();

 private:
  const double scale_;
  tarno::FileDescriptor memory_;
  program::ChildProcess process_;
};

}  // namespace desktop
