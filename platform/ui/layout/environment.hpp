#pragma once

#include <algorithm>

#include "ui/color.hpp"
#include "ui/font.hpp"
#include "ui/node.hpp"

namespace ui {

/// The line limit of a text that has none.
inline constexpr int unlimitedLines = 1000;

/// What holds for everything inside a view until something further inside says otherwise. Travels down a
/// layout by value; the defaults are what the outermost view starts with.
struct Environment {
  Font font = Font::system(TextStyle::body);
  Color foreground = black;
  int lineLimit = unlimitedLines;
  double minimumScaleFactor = 1;  ///< above 0, at most 1
  bool accessibilityHidden = false;

  friend bool operator==(const Environment&, const Environment&) = default;
};

/// The environment inside each of the modifiers that set one.
inline Environment inside(const nodes::WithFont& node, Environment environment) {
  environment.font = node.font;
  return environment;
}

inline Environment inside(const nodes::WithForegroundStyle& node, Environment environment) {
  environment.foreground = node.color;
  return environment;
}

inline Environment inside(const nodes::WithLineLimit& node, Environment environment) {
  environment.lineLimit = std::clamp(node.lines, 1, unlimitedLines);
  return environment;
}

inline Environment inside(const nodes::WithMinimumScaleFactor& node, Environment environment) {
  constexpr double smallest = 0.01;
  environment.minimumScaleFactor = node.factor > smallest ? std::min(node.factor, 1.0) : smallest;
  return environment;
}

}  // namespace ui
