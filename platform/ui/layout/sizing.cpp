#include "tarno/ui/layout/sizing.hpp"

#include <algorithm>

#include "tarno/ui/layout/frame_layout.hpp"
#include "tarno/ui/layout/stack_layout.hpp"
#include "tarno/ui/layout/text_fitting.hpp"
#include "tarno/ui/symbols/symbol.hpp"

namespace ui {
namespace {

/// All that a shape is offered, 10 points where it is asked for its ideal.
Size shapeSize(const ProposedSize& proposal) {
  constexpr double ideal = 10;
  return {std::max(proposal.width.value_or(ideal), 0.0), std::max(proposal.height.value_or(ideal), 0.0)};
}

/// The size of the symbol in `font`; 1 em square if no symbol has that name.
Size imageSize(const nodes::Image& image, const Font& font) {
  const Symbol* symbol = findSymbol(image.systemName);
  const Size em = symbol ? symbol->size : Size{1, 1};
  return {em.width * font.size, em.height * font.size};
}

struct Sizing {
  const Environment& environment;
  const ProposedSize& proposal;
  LayoutPass& pass;

  Size of(const View& content) const { return sizeThatFits(content, environment, proposal, pass); }
  Size of(const View& content, const Environment& inner) const {
    return sizeThatFits(content, inner, proposal, pass);
  }

  Size operator()(const nodes::Text& node) const {
    Size size = fitText(node.text, environment, proposal.width, pass.measurer).metrics.size;
    size.width = std::min(size.width, proposal.width.value_or(infinity));
    return size;
  }
  Size operator()(const nodes::Image& node) const { return imageSize(node, environment.font); }
  Size operator()(const nodes::Fill&) const { return shapeSize(proposal); }
  Size operator()(const nodes::Stroke&) const { return shapeSize(proposal); }

  Size operator()(const nodes::HStack& node) const {
    return layoutStack(node, environment, proposal, pass).size;
  }
  Size operator()(const nodes::VStack& node) const {
    return layoutStack(node, environment, proposal, pass).size;
  }
  Size operator()(const nodes::ZStack& node) const {
    Size size;
    for (const View& child : node.children) {
      const Size layer = of(child);
      size = {std::max(size.width, layer.width), std::max(size.height, layer.height)};
    }
    return size;
  }

  Size operator()(const nodes::WithFont& node) const { return of(node.content, inside(node, environment)); }
  Size operator()(const nodes::WithForegroundStyle& node) const { return of(node.content); }
  Size operator()(const nodes::WithLineLimit& node) const {
    return of(node.content, inside(node, environment));
  }
  Size operator()(const nodes::WithMinimumScaleFactor& node) const {
    return of(node.content, inside(node, environment));
  }

  Size operator()(const nodes::Padding& node) const {
    const Size space = paddingSize(node);
    const Size content = sizeThatFits(node.content, environment, reduced(proposal, space), pass);
    return {std::max(content.width + space.width, 0.0), std::max(content.height + space.height, 0.0)};
  }
  Size operator()(const nodes::Frame& node) const {
    const std::optional<Size> fixed = fixedSize(node);
    return fixed ? *fixed : layoutFrame(node, environment, proposal, pass).size;
  }

  Size operator()(const nodes::Background& node) const { return of(node.content); }
  Size operator()(const nodes::RotationEffect& node) const { return of(node.content); }
  Size operator()(const nodes::ContainerBackground& node) const { return of(node.content); }
  Size operator()(const nodes::AccessibilityLabelled& node) const { return of(node.content); }
  Size operator()(const nodes::AccessibilityHidden& node) const { return of(node.content); }
};

}  // namespace

Size sizeThatFits(const View& view, const Environment& environment, const ProposedSize& proposal,
                  LayoutPass& pass) {
  return std::visit(Sizing{environment, proposal, pass}, view.node());
}

Size paddingSize(const nodes::Padding& padding) {
  return padding.edges == EdgeSet::horizontal ? Size{2 * padding.length, 0} : Size{0, 2 * padding.length};
}

ProposedSize reduced(const ProposedSize& proposal, const Size& taken) {
  ProposedSize rest = proposal;
  if (rest.width) rest.width = std::max(*rest.width - taken.width, 0.0);
  if (rest.height) rest.height = std::max(*rest.height - taken.height, 0.0);
  return rest;
}

}  // namespace ui
