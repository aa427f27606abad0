#include "tarno/ui/description/view_description.hpp"

#include "tarno/ui/description/description_builder.hpp"
#include "tarno/ui/layout/node.hpp"

namespace ui {
namespace {

using Builder = DescriptionBuilder;

std::string_view word(HorizontalAlignment alignment) {
  return alignment == HorizontalAlignment::leading ? "leading" : "center";
}

struct OutlineBuilder {
  Builder operator()(const nodes::Circle& circle) const {
    Builder builder{"Circle"};
    if (circle.from != 0 || circle.to != 1) builder.number("from", circle.from).number("to", circle.to);
    return builder;
  }
  Builder operator()(const nodes::Capsule&) const {
    Builder builder{"Capsule"};
    return builder.text("style", "continuous");
  }
};

struct ViewDescriber {
  Description operator()(const nodes::Text& node) const {
    return Builder{"Text"}.text("text", node.text).take();
  }
  Description operator()(const nodes::Image& node) const {
    return Builder{"Image"}.text("systemName", node.systemName).take();
  }
  Description operator()(const nodes::Fill& node) const {
    return std::visit(OutlineBuilder{}, node.outline).text("fill", describe(node.color)).take();
  }
  Description operator()(const nodes::Stroke& node) const {
    return OutlineBuilder{}(node.circle)
        .text("stroke", describe(node.color))
        .number("lineWidth", node.style.lineWidth)
        .choice("lineCap", word(node.style.lineCap), "butt")
        .take();
  }

  Description operator()(const nodes::HStack& node) const {
    return children(Builder{"HStack"}.number("spacing", node.options.spacing), node.children);
  }
  Description operator()(const nodes::VStack& node) const {
    return children(Builder{"VStack"}
                        .choice("alignment", word(node.options.alignment), "center")
                        .number("spacing", node.options.spacing),
                    node.children);
  }
  Description operator()(const nodes::ZStack& node) const {
    Builder builder{"ZStack"};
    return children(builder, node.children);
  }

  Description operator()(const nodes::WithFont& node) const {
    const Font& font = node.font;
    return Builder{"font"}
        .number("size", font.size)
        .choice("weight", word(font.fontWeight), "regular")
        .choice("design", word(font.fontDesign), "standard")
        .child(describe(node.content))
        .take();
  }
  Description operator()(const nodes::WithForegroundStyle& node) const {
    return Builder{"foregroundStyle"}
        .text("color", describe(node.color))
        .child(describe(node.content))
        .take();
  }
  Description operator()(const nodes::WithLineLimit& node) const {
    return Builder{"lineLimit"}.number("lines", node.lines).child(describe(node.content)).take();
  }
  Description operator()(const nodes::WithMinimumScaleFactor& node) const {
    return Builder{"minimumScaleFactor"}.number("factor", node.factor).child(describe(node.content)).take();
  }

  Description operator()(const nodes::Padding& node) const {
    return Builder{"padding"}
        .text("edges", node.edges == EdgeSet::horizontal ? "horizontal" : "vertical")
        .number("length", node.length)
        .child(describe(node.content))
        .take();
  }
  Description operator()(const nodes::Frame& node) const {
    const FrameOptions& options = node.options;
    return Builder{"frame"}
        .number("width", options.width)
        .number("height", options.height)
        .number("maxWidth", options.maxWidth)
        .number("maxHeight", options.maxHeight)
        .choice("alignment", word(options.alignment), "center")
        .child(describe(node.content))
        .take();
  }
  Description operator()(const nodes::Background& node) const {
    return Builder{"background"}.child(describe(node.content)).child(describe(node.background)).take();
  }
  Description operator()(const nodes::RotationEffect& node) const {
    return Builder{"rotationEffect"}
        .number("degrees", node.angle.inDegrees())
        .child(describe(node.content))
        .take();
  }
  Description operator()(const nodes::ContainerBackground& node) const {
    return Builder{"containerBackground"}
        .text("color", describe(node.color))
        .child(describe(node.content))
        .take();
  }

  Description operator()(const nodes::AccessibilityLabelled& node) const {
    return Builder{"accessibilityElement"}.text("label", node.label).child(describe(node.content)).take();
  }
  Description operator()(const nodes::AccessibilityHidden& node) const {
    return Builder{"accessibilityHidden"}.child(describe(node.content)).take();
  }

 private:
  static Description children(Builder& builder, const std::vector<View>& views) {
    for (const View& view : views) builder.child(describe(view));
    return builder.take();
  }
};

}  // namespace

Description describe(const View& view) { return std::visit(ViewDescriber{}, view.node()); }

}  // namespace ui
