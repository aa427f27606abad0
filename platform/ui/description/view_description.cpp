#include "tarno/ui/description/view_description.hpp"

#include <array>

#include "tarno/ui/description/description_builder.hpp"
#include "tarno/ui/node.hpp"

namespace ui {
namespace {

using Builder = DescriptionBuilder;

/// The name of a place on an axis whose ends go by `names`.
std::string nameOfPlace(double fraction, const std::array<std::string_view, 3>& names) {
  if (fraction == 0 || fraction == 0.5 || fraction == 1)
    return std::string{names[static_cast<std::size_t>(fraction * 2)]};
  return std::to_string(fraction);
}

std::string nameOf(HorizontalAlignment alignment) {
  return nameOfPlace(alignment.fraction, {"leading", "center", "trailing"});
}

std::string nameOf(VerticalAlignment alignment) {
  return nameOfPlace(alignment.fraction, {"top", "center", "bottom"});
}

/// The name that fits both axes where there is one, as in code; "leading top" where there is none.
std::string nameOf(const Alignment& alignment) {
  std::string horizontal = nameOf(alignment.horizontal);
  std::string vertical = nameOf(alignment.vertical);
  if (vertical == "center") return horizontal;
  return horizontal == "center" ? vertical : horizontal + ' ' + vertical;
}

struct OutlineBuilder {
  Builder operator()(const nodes::Circle& circle) const {
    Builder builder{"Circle"};
    if (circle.from != 0 || circle.to != 1) builder.number("from", circle.from).number("to", circle.to);
    return builder;
  }
  Builder operator()(const nodes::Capsule& capsule) const {
    Builder builder{"Capsule"};
    return builder.choice(
        "style", capsule.style == RoundedCornerStyle::continuous ? "continuous" : "circular", "circular");
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
    return std::visit(OutlineBuilder{}, node.outline)
        .text("stroke", describe(node.color))
        .number("lineWidth", node.style.lineWidth)
        .choice("lineCap", word(node.style.lineCap), "butt")
        .take();
  }

  Description operator()(const nodes::HStack& node) const { return stack("HStack", node); }
  Description operator()(const nodes::VStack& node) const { return stack("VStack", node); }
  Description operator()(const nodes::ZStack& node) const {
    Builder builder{"ZStack"};
    builder.choice("alignment", nameOf(node.options.alignment), "center");
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
        .choice("alignment", nameOf(options.alignment), "center")
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
  template <class Stack>
  static Description stack(const char* name, const Stack& node) {
    Builder builder{name};
    builder.choice("alignment", nameOf(node.options.alignment), "center")
        .number("spacing", node.options.spacing);
    return children(builder, node.children);
  }

  static Description children(Builder& builder, const std::vector<View>& views) {
    for (const View& view : views) builder.child(describe(view));
    return builder.take();
  }
};

}  // namespace

Description describe(const View& view) { return std::visit(ViewDescriber{}, view.node()); }

}  // namespace ui
