#pragma once

#include "tarno/ui/color.hpp"
#include "tarno/ui/font.hpp"
#include "tarno/ui/layout/node.hpp"

namespace ui {

/// What holds for everything inside a view until something further inside says otherwise. Travels down a
/// layout by value; the defaults are what the outermost view starts with.
struct Environment {
  Font font = Font::system(TextStyle::body);
  Color foreground = black;
  int lineLimit = unlimitedLines;
  double minimumScaleFactor = 1;
  bool accessibilityHidden = false;

  friend bool operator==(const Environment&, const Environment&) = default;
};

/// The environment inside each of the modifiers that change it.
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

/// A node that is its content in an environment of its own.
template <class Node>
concept EnvironmentModifier = requires(const Node& node, const Environment& environment) {
  inside(node, environment);
};

}  // namespace ui
