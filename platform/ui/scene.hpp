#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tarno/ui/color.hpp"
#include "tarno/ui/font.hpp"
#include "tarno/ui/geometry.hpp"
#include "tarno/ui/path.hpp"

namespace ui {

/// An outline filled by the nonzero rule.
struct FillPath {
  Path path;
  Color color;
  /// On a raster image, the outline moves by at most half a pixel so that this point is on a corner of a
  /// pixel. This keeps the edges of small symbols sharp.
  std::optional<Point> anchor{};
  /// On a raster image, the outline stretches and moves by at most a pixel so that its sides are between
  /// pixels. The middle of its height moves like an anchor, so that a symbol there stays centred.
  bool fitsPixels = false;

  friend bool operator==(const FillPath&, const FillPath&) = default;
};

struct StrokePath {
  Path path;
  StrokeStyle style;
  Color color;

  friend bool operator==(const StrokePath&, const StrokePath&) = default;
};

/// A text that fits its box. It is set in `font`, which is already scaled, and is broken into lines and cut
/// as TextMeasurer::measure() does it for the width of the box and `maxLines`.
struct TextRun {
  std::string text;
  Font font;
  Color color;
  Rect box;
  double baseline = 0;  ///< of the first line, from the top of the box
  int maxLines = 1;
  bool truncated = false;
  double drawnScale = 1;  ///< the factor from the size of `font` to the size that is drawn

  friend bool operator==(const TextRun&, const TextRun&) = default;
};

using SceneItem = std::variant<FillPath, StrokePath, TextRun>;

/// An element that a screen reader finds.
struct AccessibilityElement {
  enum class Role { staticText, image };

  Role role = Role::staticText;
  std::string label;
  Rect frame;

  friend bool operator==(const AccessibilityElement&, const AccessibilityElement&) = default;
};

/// A laid-out view: the items to draw, from bottom to top, with all colours, fonts, sizes and positions, and
/// the elements that a screen reader finds, in reading order.
struct Scene {
  Size size;
  std::vector<SceneItem> items;
  std::vector<AccessibilityElement> accessibility;

  friend bool operator==(const Scene&, const Scene&) = default;
};

}  // namespace ui
