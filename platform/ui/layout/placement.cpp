#include "tarno/ui/layout/placement.hpp"

#include <algorithm>

#include "tarno/ui/layout/frame_layout.hpp"
#include "tarno/ui/layout/sizing.hpp"
#include "tarno/ui/layout/stack_layout.hpp"
#include "tarno/ui/layout/text_fitting.hpp"
#include "tarno/ui/symbols/symbol.hpp"

namespace ui {
namespace {

Rect aligned(const Size& size, const Rect& area, HorizontalAlignment alignment) {
  return {{area.origin.x + (area.size.width - size.width) * fraction(alignment),
           area.origin.y + (area.size.height - size.height) * fraction(VerticalAlignment::center)},
          size};
}

Path outline(const nodes::Circle& circle, const Rect& rect) {
  return circle.from < circle.to ? Path::circle(rect, circle.from, circle.to) : Path{};
}

Path outline(const nodes::Capsule&, const Rect& rect) { return Path::roundedRect(rect, infinity); }

/// Returns the replacement for an unknown symbol: an empty box with round corners, so that people notice it.
StrokePath unknownSymbol(const Rect& rect, const Color& color) {
  const double em = rect.size.width;
  return {Path::roundedRect(rect.inset(em * 0.12), em * 0.16), {.lineWidth = em * 0.08}, color};
}

struct Placer {
  const Environment& environment;
  const Placement& where;
  LayoutPass& pass;
  DisplayList& list;

  void give(const View& content) const { place(content, environment, where, pass, list); }
  void give(const View& content, const Size& offer) const {
    placeCentered(content, environment, offer, where.rect, pass, list);
  }

  void announce(AccessibilityElement::Role role, const std::string& label) const {
    if (!environment.accessibilityHidden) list.accessibility.push_back({role, label, where.rect});
  }

  void placeStack(const StackLayout& stack, const std::vector<View>& views) const {
    const Point corner = where.rect.origin;
    for (std::size_t i = 0; i < views.size(); ++i) {
      const auto& [offer, size, origin] = stack.children[i];
      const Rect rect{{corner.x + origin.x, corner.y + origin.y}, size};
      place(views[i], environment, {offer, rect}, pass, list);
    }
  }

  void operator()(const nodes::Text& node) const {
    if (node.text.empty()) return;
    announce(AccessibilityElement::Role::staticText, node.text);
    const auto [font, metrics] = fitText(node.text, environment, where.offer.width, pass.measurer);
    if (!(metrics.size.height > 0)) return;
    list.items.emplace_back(TextRun{.text = node.text,
                                    .font = font,
                                    .color = environment.foreground,
                                    .box = {where.rect.origin, metrics.size},
                                    .baseline = metrics.baseline,
                                    .maxLines = environment.lineLimit,
                                    .truncated = metrics.truncated,
                                    .drawnScale = metrics.drawnScale});
  }
  void operator()(const nodes::Image& node) const {
    const Color& color = environment.foreground;
    const Symbol* symbol = findSymbol(node.systemName);
    if (!symbol)
      list.items.emplace_back(unknownSymbol(where.rect, color));
    else
      list.items.emplace_back(FillPath{symbol->outline.placed(environment.font.size, where.rect.origin),
                                       color, where.rect.center()});
  }
  void operator()(const nodes::Fill& node) const {
    const bool isCircle = std::holds_alternative<nodes::Circle>(node.outline);
    list.items.emplace_back(
        FillPath{std::visit([&](const auto& shape) { return outline(shape, where.rect); }, node.outline),
                 node.color, isCircle ? std::optional{where.rect.center()} : std::nullopt, !isCircle});
  }
  void operator()(const nodes::Stroke& node) const {
    list.items.emplace_back(StrokePath{outline(node.circle, where.rect), node.style, node.color});
  }

  void operator()(const nodes::HStack& node) const {
    placeStack(layoutStack(node, environment, where.offer, pass), node.children);
  }
  void operator()(const nodes::VStack& node) const {
    placeStack(layoutStack(node, environment, where.offer, pass), node.children);
  }
  void operator()(const nodes::ZStack& node) const {
    for (const View& child : node.children) give(child, where.offer);
  }

  template <EnvironmentModifier Modifier>
  void operator()(const Modifier& node) const {
    place(node.content, inside(node, environment), where, pass, list);
  }
  void operator()(const nodes::AccessibilityLabelled& node) const {
    announce(AccessibilityElement::Role::image, node.label);
    place(node.content, inside(node, environment), where, pass, list);
  }

  void operator()(const nodes::Padding& node) const {
    give(node.content, reduced(where.offer, paddingSize(node)));
  }
  void operator()(const nodes::Frame& node) const {
    const FrameLayout frame = layoutFrame(node, environment, where.offer, pass);
    place(node.content, environment,
          {frame.offer, aligned(frame.content, where.rect, node.options.alignment)}, pass, list);
  }
  void operator()(const nodes::Background& node) const {
    give(node.background, where.rect.size);
    give(node.content);
  }
  void operator()(const nodes::RotationEffect& node) const {
    const std::size_t before = list.items.size();
    give(node.content);
    const Rotation rotation{node.angle, where.rect.center()};
    for (std::size_t i = before; i < list.items.size(); ++i)
      if (auto* stroke = std::get_if<StrokePath>(&list.items[i]))
        stroke->path = stroke->path.rotated(rotation);
  }
  void operator()(const nodes::ContainerBackground& node) const {
    if (!list.containerBackground) list.containerBackground = node.color;
    give(node.content);
  }
};

}  // namespace

void place(const View& view, const Environment& environment, const Placement& where, LayoutPass& pass,
           DisplayList& list) {
  std::visit(Placer{environment, where, pass, list}, view.node());
}

void placeCentered(const View& view, const Environment& environment, const Size& offer, const Rect& area,
                   LayoutPass& pass, DisplayList& list) {
  const Size size = sizeThatFits(view, environment, offer, pass);
  place(view, environment, {offer, aligned(size, area, center)}, pass, list);
}

}  // namespace ui
