#include "ui/view.hpp"

#include <algorithm>

#include "ui/node.hpp"

namespace ui {
namespace {

/// Between a label's symbol and its title, in points: a word space at the sizes that labels are set in.
constexpr double labelSpacing = 4;

}  // namespace

View::View(Node node) : node_(std::make_shared<const Node>(std::move(node))) {}

bool operator==(const View& a, const View& b) { return a.node_ == b.node_ || *a.node_ == *b.node_; }

View View::font(Font font) const { return View{nodes::WithFont{*this, font}}; }

View View::foregroundStyle(Color color) const { return View{nodes::WithForegroundStyle{*this, color}}; }

View View::lineLimit(int lines) const { return View{nodes::WithLineLimit{*this, lines}}; }

View View::minimumScaleFactor(double factor) const {
  return View{nodes::WithMinimumScaleFactor{*this, factor}};
}

View View::padding(EdgeSet edges, double length) const { return View{nodes::Padding{*this, edges, length}}; }

View View::frame(FrameOptions options) const { return View{nodes::Frame{*this, options}}; }

View View::background(View content) const { return View{nodes::Background{*this, std::move(content)}}; }

View View::rotationEffect(Angle angle) const { return View{nodes::RotationEffect{*this, angle}}; }

View View::containerBackground(Color color) const { return View{nodes::ContainerBackground{*this, color}}; }

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
  return View{nodes::HStack{options, std::move(children)}};
}

View makeVStack(VStackOptions options, std::vector<View> children) {
  return View{nodes::VStack{options, std::move(children)}};
}

View makeZStack(ZStackOptions options, std::vector<View> children) {
  return View{nodes::ZStack{options, std::move(children)}};
}

Circle Circle::trim(double from, double to) const {
  const auto along = [this](double fraction) {
    return from_ + std::clamp(fraction, 0.0, 1.0) * (to_ - from_);
  };
  Circle trimmed;
  trimmed.from_ = along(from);
  trimmed.to_ = std::max(along(to), trimmed.from_);
  return trimmed;
}

View Circle::fill(Color color) const { return View{nodes::Fill{nodes::Circle{from_, to_}, color}}; }

View Circle::stroke(Color color, StrokeStyle style) const {
  return View{nodes::Stroke{nodes::Circle{from_, to_}, color, style}};
}

View Capsule::fill(Color color) const { return View{nodes::Fill{nodes::Capsule{style_}, color}}; }

}  // namespace ui
