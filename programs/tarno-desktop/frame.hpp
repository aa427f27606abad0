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

/// An element for screen readers. Its position is in points from the upper left corner of the tile.
struct AccessibleElement {
  std::string role;   ///< "image" or "staticText"
  std::string label;  ///< the spoken text
  double x = 0, y = 0, width = 0, height = 0;

  friend bool operator==(const AccessibleElement&, const AccessibleElement&) = default;
};

/// A tile drawn by the frame process, and the data that came with the picture.
struct Frame {
  std::shared_ptr<const Picture> picture;
  std::string title;         ///< the widget's name in the user's language
  std::string announcement;  ///< changes only with the status, not with its age
  std::vector<AccessibleElement> elements;
  tarno::Date reloadDate;
  std::optional<tarno::Date> staleDate;  ///< when the status turns stale; absent if it will not
  std::filesystem::path storeFile;       ///< absolute; need not exist; empty if unknown
};

/// Reads the answer of a frame process that was asked for `scale`, and the picture in `memory`. Trusts
/// neither: throws std::exception unless the picture is as large as the answer says, sealed, and of a tile's
/// size, and the texts are short.
Frame readFrame(const std::string& output, tarno::FileDescriptor memory, double scale);

/// The arguments of `tarno-widget frame`.
struct FrameRequest {
  std::filesystem::path program;  ///< if it cannot be run, the one of the same name in PATH is used
  std::string family = "medium";
  double scale = 1;               ///< pixels per point
  std::optional<tarno::Date> at;  ///< freezes the clock at this date
};

/// The result of a frame process.
struct FrameResult {
  std::optional<Frame> frame;
  std::string failure;  ///< why there is no frame
  std::string errors;   ///< what the process wrote to standard error
};

/// A process of the widget extension that draws one frame (docs/frame.md). Its answer is not trusted, and it
/// has 10 s; if anything goes wrong, only this picture is lost.
class FrameProcess {
 public:
  /// Starts the process. Throws std::system_error if the system has no process, memory or descriptor left.
  explicit FrameProcess(const FrameRequest& request);

  /// Call finish() once it has ended.
  program::ChildProcess& process() { return process_; }

  /// Call it once.
  FrameResult finish();

 private:
  const double scale_;
  tarno::FileDescriptor memory_;
  program::ChildProcess process_;
};

}  // namespace desktop
