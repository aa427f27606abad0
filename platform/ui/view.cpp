#include "tarno/ui/view.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tarno/ui/layout/node.hpp"

namespace ui {
namespace {

/// The space between the symbol and the title of a label, in points: about a blank at the usual sizes.
constexpr double labelSpacing = 4;

double boundedLength(double length) { return bounded(length, 0, longestLength); }

/// Limits a font size to 1000 points, because font libraries run out of memory when they scale colour glyphs
/// to much larger sizes. A size below 1 becomes 0.
double boundedFontSize(double size) {
  constexpr double smallest = 1;
  constexpr double largest = 1000;
  return size >= smallest ? bounded(size, smallest, largest) : 0;
}

/// Limits a length that may be negative.
double boundedDistance(double length) { return bounded(length, -longestLength, longestLength); }

double boundedFraction(double fraction) { return bounded(fraction, 0, 1); }

Color boundedColor(const Color& color) {
  return {boundedFraction(color.red), boundedFraction(color.green), boundedFraction(color.blue),
          boundedFraction(color.alpha)};
}

Angle boundedAngle(Angle angle) {
  return {std::isfinite(angle.radians) ? std::fmod(angle.radians, 2 * std::numbers::pi) : 0};
}

std::optional<double> boundedMaximum(std::optional<double> length) {
  if (!length || !(*length >= 0)) return std::nullopt;
  return std::isinf(*length) ? length : boundedLength(*length);
}

std::optional<double> boundedFixedLength(std::optional<double> length) {
  const auto result = boundedMaximum(length);
  return result == infinity ? std::nullopt : result;
}

}  // namespace

View::View(Node node) : node_(std::make_shared<const Node>(std::move(node))) {}

bool operator==(const View& a, const View& b) { return a.node_ == b.node_ || *a.node_ == *b.node_; }

View View::font(Font font) const {
  return View{nodes::WithFont{*this, {boundedFontSize(font.size), font.fontWeight, font.fontDesign}}};
}

View View::foregroundStyle(Color color) const {
  return View{nodes::WithForegroundStyle{*this, boundedColor(color)}};
}

View View::lineLimit(int lines) const {
  return View{nodes::WithLineLimit{*this, std::clamp(lines, 1, unlimitedLines)}};
}

View View::minimumScaleFactor(double factor) const {
  return View{nodes::WithMinimumScaleFactor{*this, bounded(factor, 0.01, 1)}};
}

View View::padding(EdgeSet edges, double length) const {
  return View{nodes::Padding{*this, edges, boundedDistance(length)}};
}

View View::frame(FrameOptions options) const {
  return View{nodes::Frame{*this,
                           {.width = boundedFixedLength(options.width),
                            .height = boundedFixedLength(options.height),
                            .maxWidth = boundedMaximum(options.maxWidth),
                            .maxHeight = boundedMaximum(options.maxHeight),
                            .alignment = options.alignment}}};
}

View View::background(View content) const { return View{nodes::Background{*this, std::move(content)}}; }

View View::rotationEffect(Angle angle) const {
  return View{nodes::RotationEffect{*this, boundedAngle(angle)}};
}

View View::containerBackground(Color color) const {
  return View{nodes::ContainerBackground{*this, boundedColor(color)}};
}

View View::accessibilityElement(std::string label) const {
  return View{nodes::AccessibilityLabelled{*this, std::move(label)}};
}

View View::accessibilityHidden() const { return View{nodes::AccessibilityHidden{*this}}; }

View Text(std::string text) { return View{nodes::Text{std::move(text)}}; }

View Image(std::string systemName) { return View{nodes::Image{std::move(systemName)}}; }

View Label(std::string title, std::string systemImage) {
  return HStack({.spacing = labelSpacing}, Image(std::move(systemImage)), Text(std::move(title)));
}

View makeHStack(HStackOptions options, std::vector<View> children) {
  return View{nodes::HStack{{options.alignment, boundedDistance(options.spacing)}, std::move(children)}};
}

View makeVStack(VStackOptions options, std::vector<View> children) {
  return View{nodes::VStack{{options.alignment, boundedDistance(options.spacing)}, std::move(children)}};
}

View makeZStack(std::vector<View> children) { return View{nodes::ZStack{std::move(children)}}; }

Circle Circle::trim(double from, double to) const {
  const auto along = [this](double fraction) { return from_ + boundedFraction(fraction) * (to_ - from_); };
  Circle trimmed;
  trimmed.from_ = along(from);
  trimmed.to_ = std::max(along(to), trimmed.from_);
  return trimmed;
}

View Circle::fill(Color color) const {
  return View{nodes::Fill{nodes::Circle{from_, to_}, boundedColor(color)}};
}

View Circle::stroke(Color color, StrokeStyle style) const {
  return View{nodes::Stroke{
      nodes::Circle{from_, to_}, boundedColor(color), {boundedLength(style.lineWidth), style.lineCap}}};
}

View Capsule::fill(Color color) const { return View{nodes::Fill{nodes::Capsule{}, boundedColor(color)}}; }

}  // namespace ui
