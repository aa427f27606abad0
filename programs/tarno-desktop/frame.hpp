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
  std::string announcement;  ///< what screen readers say when it changes, which it does only with the status
  std::vector<AccessibleElement> elements;
  tarno::Date reloadDate;
  std::optional<tarno::Date> staleDate;  ///< when the status turns stale; absent if it will not
  std::filesystem::path storeFile;       ///< absolute, even if it does not exist; empty if unknown
};

/// Reads the answer of a frame process to a request with `scale`, and the picture in `memory`. Does not trust
/// them: throws std::exception unless the memory is sealed and large enough, the picture has the size of the
/// tile, and the texts are short.
Frame readFrame(const std::string& output, tarno::FileDescriptor memory, double scale);

/// How to start `tarno-widget frame`.
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

/// A process of the widget extension that draws one frame (see docs/frame.md). It has 10 s, and its answer is
/// not trusted. If anything goes wrong, only this frame is lost.
class FrameProcess {
 public:
  /// Starts the process. Throws std::system_error if the system has no process, memory or descriptor left.
  explicit FrameProcess(const FrameRequest& request);

  /// Returns the process. Call finish() once it has ended.
  program::ChildProcess& process() { return process_; }

  /// Returns the frame, or why there is none. Call it once.
  FrameResult finish();

 private:
  const double scale_;
  tarno::FileDescriptor memory_;
  program::ChildProcess process_;
};

}  // namespace desktop
