#pragma once

#include <string>
#include <variant>
#include <vector>

#include "tarno/ui/view.hpp"

/// What a View holds: one struct for each kind of view or modifier. An operation on views (layout,
/// description) is a visitor with one overload for each struct. To build views, you need only view.hpp. All
/// numbers are within the bounds that view.hpp gives: none is a NaN, and only the maximum of a frame may be
/// infinite.
namespace ui::nodes {

struct Text {
  std::string text;
  friend bool operator==(const Text&, const Text&) = default;
};

struct Image {
  std::string systemName;
  friend bool operator==(const Image&, const Image&) = default;
};

struct Circle {
  double from;
  double to;
  friend bool operator==(const Circle&, const Circle&) = default;
};

struct Capsule {
  friend bool operator==(const Capsule&, const Capsule&) = default;
};

struct Fill {
  std::variant<Circle, Capsule> outline;
  Color color;
  friend bool operator==(const Fill&, const Fill&) = default;
};

struct Stroke {
  Circle circle;
  Color color;
  StrokeStyle style;
  friend bool operator==(const Stroke&, const Stroke&) = default;
};

struct HStack {
  HStackOptions options;
  std::vector<View> children;
  friend bool operator==(const HStack&, const HStack&) = default;
};

struct VStack {
  VStackOptions options;
  std::vector<View> children;
  friend bool operator==(const VStack&, const VStack&) = default;
};

struct ZStack {
  std::vector<View> children;
  friend bool operator==(const ZStack&, const ZStack&) = default;
};

struct WithFont {
  View content;
  Font font;
  friend bool operator==(const WithFont&, const WithFont&) = default;
};

struct WithForegroundStyle {
  View content;
  Color color;
  friend bool operator==(const WithForegroundStyle&, const WithForegroundStyle&) = default;
};

struct WithLineLimit {
  View content;
  int lines;
  friend bool operator==(const WithLineLimit&, const WithLineLimit&) = default;
};

struct WithMinimumScaleFactor {
  View content;
  double factor;
  friend bool operator==(const WithMinimumScaleFactor&, const WithMinimumScaleFactor&) = default;
};

struct Padding {
  View content;
  EdgeSet edges;
  double length;
  friend bool operator==(const Padding&, const Padding&) = default;
};

struct Frame {
  View content;
  FrameOptions options;
  friend bool operator==(const Frame&, const Frame&) = default;
};

struct Background {
  View content;
  View background;
  friend bool operator==(const Background&, const Background&) = default;
};

struct RotationEffect {
  View content;
  Angle angle;
  friend bool operator==(const RotationEffect&, const RotationEffect&) = default;
};

struct ContainerBackground {
  View content;
  Color color;
  friend bool operator==(const ContainerBackground&, const ContainerBackground&) = default;
};

struct AccessibilityLabelled {
  View content;
  std::string label;
  friend bool operator==(const AccessibilityLabelled&, const AccessibilityLabelled&) = default;
};

struct AccessibilityHidden {
  View content;
  friend bool operator==(const AccessibilityHidden&, const AccessibilityHidden&) = default;
};

}  // namespace ui::nodes

namespace ui {

struct Node : std::variant<nodes::Text, nodes::Image, nodes::Fill, nodes::Stroke, nodes::HStack,
                           nodes::VStack, nodes::ZStack, nodes::WithFont, nodes::WithForegroundStyle,
                           nodes::WithLineLimit, nodes::WithMinimumScaleFactor, nodes::Padding, nodes::Frame,
                           nodes::Background, nodes::RotationEffect, nodes::ContainerBackground,
                           nodes::AccessibilityLabelled, nodes::AccessibilityHidden> {
  using variant::variant;
};

}  // namespace ui
