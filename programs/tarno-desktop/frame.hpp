#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/date.hpp"
#include "tarno-desktop/picture.hpp"

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
  foundation::Date reloadDate;
  std::optional<foundation::Date> staleDate;  ///< when the status turns stale; nothing when it will not
  std::filesystem::path storeFile;  ///< absolute, need not exist; empty when nobody knows where it is
};

/// Reads what `tarno-widget frame` printed (docs/frame.md) about the picture that it drew into `memory` at
/// `scale` pixels per point. Trusts nothing in it. Throws std::exception when there is no picture or the
/// answer is wrong.
Frame readFrame(std::string_view answer, foundation::FileDescriptor memory, double scale);

}  // namespace desktop
