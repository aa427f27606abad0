#include "tarno/ui/layout/sizing.hpp"

#include <algorithm>

#include "tarno/ui/layout/frame_layout.hpp"
#include "tarno/ui/layout/stack_layout.hpp"
#include "tarno/ui/layout/text_fitting.hpp"
#include "tarno/ui/symbols/symbol.hpp"

namespace ui {
namespace {

/// Returns the size of the symbol in `font`; 1 em square if no symbol has that name.
Size imageSize(const nodes::Image& image, const Font& font) {
  const Symbol* symbol = findSymbol(image.systemName);
  const Size em = symbol ? symbol->size : Size{1, 1};
  return {em.width * font.size, em.height * font.size};
}

struct Sizing {
  const Environment& environment;
  const Size& proposal;
  LayoutPass& pass;

  Size of(const View& content) const { return sizeThatFits(content, environment, proposal, pass); }

  Size operator()(const nodes::Text& node) const {
    Size size = fitText(node.text, environment, proposal.width, pass.measurer).metrics.size;
    size.width = std::min(size.width, proposal.width);
    return size;
  }
  Size operator()(const nodes::Image& node) const { return imageSize(node, environment.font); }
  Size operator()(const nodes::Fill&) const { return proposal; }
  Size operator()(const nodes::Stroke&) const { return proposal; }

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

  template <EnvironmentModifier Modifier>
  Size operator()(const Modifier& node) const {
    return sizeThatFits(node.content, inside(node, environment), proposal, pass);
  }

  Size operator()(const nodes::Padding& node) const {
    const Size space = paddingSize(node);
    const Size content = sizeThatFits(node.content, environment, reduced(proposal, space), pass);
    return reduced(content, {-space.width, -space.height});
  }
  Size operator()(const nodes::Frame& node) const {
    const std::optional<Size> fixed = fixedSize(node);
    return fixed ? *fixed : layoutFrame(node, environment, proposal, pass).size;
  }

  Size operator()(const nodes::Background& node) const { return of(node.content); }
  Size operator()(const nodes::RotationEffect& node) const { return of(node.content); }
  Size operator()(const nodes::ContainerBackground& node) const { return of(node.content); }
};

}  // namespace

Size sizeThatFits(const View& view, const Environment& environment, const Size& proposal, LayoutPass& pass) {
  return std::visit(Sizing{environment, proposal, pass}, view.node());
}

Size paddingSize(const nodes::Padding& padding) {
  return padding.edges == EdgeSet::horizontal ? Size{2 * padding.length, 0} : Size{0, 2 * padding.length};
}

Size reduced(const Size& size, const Size& taken) {
  return {std::max(size.width - taken.width, 0.0), std::max(size.height - taken.height, 0.0)};
}

}  // namespace ui
