#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tarno/ui/color.hpp"
#include "tarno/ui/font.hpp"
#include "tarno/ui/geometry.hpp"
#include "tarno/ui/path.hpp"

/// Views are values that describe what to show. Factories create them, modifiers wrap them, and layout() lays
/// them out.
///
/// You may pass any number. Factories and modifiers limit it: a NaN becomes 0, a length is at most
/// `longestLength` and not negative (spacing and padding may be negative, down to -`longestLength`),
/// fractions and colour components are from 0 to 1, and an angle is less than one turn. Therefore every
/// layout ends, and its numbers are finite.
namespace ui {

struct Node;

/// The lengths of a frame, in points. A length that is negative or a NaN counts as absent, and so does a
/// fixed length that is infinite.
struct FrameOptions {
  std::optional<double> width;             ///< fixed
  std::optional<double> height;            ///< fixed
  std::optional<double> maxWidth;          ///< grows up to this; may be infinity
  std::optional<double> maxHeight;         ///< grows up to this; may be infinity
  HorizontalAlignment alignment = center;  ///< of the content in the frame

  friend bool operator==(const FrameOptions&, const FrameOptions&) = default;
};

/// The default line limit, which is also the maximum.
inline constexpr int unlimitedLines = 1000;

/// Sides of a view: left and right, or top and bottom.
enum class EdgeSet { horizontal, vertical };

/// An immutable view; copies share their content. Any thread.
class View {
 public:
  explicit View(Node node);

  const Node& node() const { return *node_; }

  /// The font, colour and text limits apply to everything inside, unless something further inside changes
  /// them. A font larger than 1000 points counts as 1000; one smaller than 1 counts as 0 and takes no space.
  View font(Font font) const;
  View foregroundStyle(Color color) const;
  /// Limits texts to `lines` lines, 1 to `unlimitedLines`.
  View lineLimit(int lines) const;
  /// Lets texts shrink to `factor` of their font size, 0.01 to 1, before they are cut.
  View minimumScaleFactor(double factor) const;

  /// Adds `length` points of space on each of `edges`.
  View padding(EdgeSet edges, double length) const;
  View frame(FrameOptions options) const;
  /// Shows `content` behind this view, centred and offered the size of this view.
  View background(View content) const;
  /// Turns the strokes in this view, clockwise about its centre. Fills, texts and the layout stay as they
  /// are.
  View rotationEffect(Angle angle) const;
  /// Fills the whole container with `color`, including its margins. Use it on the outermost view.
  View containerBackground(Color color) const;

  /// Makes this view one element for screen readers, with `label`. They do not find what is inside it.
  View accessibilityElement(std::string label) const;
  View accessibilityHidden() const;

  /// Compares the content.
  friend bool operator==(const View& a, const View& b);

 private:
  std::shared_ptr<const Node> node_;
};

/// The children of a stack. Absent optional views are skipped.
class Children {
 public:
  template <class... Views>
  requires(std::constructible_from<std::optional<View>, const Views&>&&...)
      Children(const Views&... children) {
    (add(children), ...);
  }

  std::vector<View> views;

 private:
  void add(const std::optional<View>& view) {
    if (view) views.push_back(*view);
  }
};

struct HStackOptions {
  VerticalAlignment alignment = center;
  double spacing = 8;  ///< between neighbours, in points

  friend bool operator==(const HStackOptions&, const HStackOptions&) = default;
};

struct VStackOptions {
  HorizontalAlignment alignment = center;
  double spacing = 8;  ///< between neighbours, in points

  friend bool operator==(const VStackOptions&, const VStackOptions&) = default;
};

/// Returns a view that shows `text` as it is, without translating it.
View Text(std::string text);

/// Returns a view of a symbol (see symbol.hpp) at the size of the current font. Screen readers ignore it.
View Image(std::string systemName);

/// Returns a view of a symbol followed by a title, both in the current font.
View Label(std::string title, std::string systemImage);

View makeHStack(HStackOptions options, std::vector<View> children);
View makeVStack(VStackOptions options, std::vector<View> children);
View makeZStack(std::vector<View> children);

template <class... Views>
View HStack(HStackOptions options, const Views&... children) {
  return makeHStack(options, Children{children...}.views);
}

template <class... Views>
View VStack(VStackOptions options, const Views&... children) {
  return makeVStack(options, Children{children...}.views);
}

/// Returns a view that shows its children on top of each other, centred, the first at the bottom.
template <class... Views>
View ZStack(const Views&... children) {
  return makeZStack(Children{children...}.views);
}

/// A shape becomes a view when it is filled or stroked. It takes all space that it is offered. Strokes are
/// centred on the outline.
class Circle {
 public:
  /// Returns the part of the outline between two fractions of its length, clockwise from 3 o'clock.
  Circle trim(double from, double to) const;
  View fill(Color color) const;
  View stroke(Color color, StrokeStyle style) const;

 private:
  double from_ = 0;
  double to_ = 1;
};

/// How the curve of a corner meets the straight side. A capsule ignores it: its ends are half circles.
enum class RoundedCornerStyle { continuous };

class Capsule {
 public:
  explicit Capsule(RoundedCornerStyle) {}
  View fill(Color color) const;
};

}  // namespace ui
