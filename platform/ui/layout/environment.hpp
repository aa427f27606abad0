#pragma once

#include "tarno/ui/color.hpp"
#include "tarno/ui/font.hpp"
#include "tarno/ui/layout/node.hpp"

namespace ui {

/// The settings that a view inherits from the views around it. Each level of a layout passes a copy down, and
/// modifiers change the copy. The outermost view starts with the defaults.
struct Environment {
  Font font = Font::system(TextStyle::body);
  Color foreground = black;
  int lineLimit = unlimitedLines;
  double minimumScaleFactor = 1;
  bool accessibilityHidden = false;

  friend bool operator==(const Environment&, const Environment&) = default;
};

// inside() returns the environment that a modifier gives to its content.
inline Environment inside(const nodes::WithFont& node, Environment environment) {
  environment.font = node.font;
  return environment;
}

inline Environment inside(const nodes::WithForegroundStyle& node, Environment environment) {
  environment.foreground = node.color;
  return environment;
}

inline Environment inside(const nodes::WithLineLimit& node, Environment environment) {
  environment.lineLimit = node.lines;
  return environment;
}

inline Environment inside(const nodes::WithMinimumScaleFactor& node, Environment environment) {
  environment.minimumScaleFactor = node.factor;
  return environment;
}

inline Environment inside(const nodes::AccessibilityLabelled&, Environment environment) {
  environment.accessibilityHidden = true;
  return environment;
}

inline Environment inside(const nodes::AccessibilityHidden&, Environment environment) {
  environment.accessibilityHidden = true;
  return environment;
}

/// A node that only changes the environment of its content.
template <class Node>
concept EnvironmentModifier = requires(const Node& node, const Environment& environment) {
  inside(node, environment);
};

}  // namespace ui
