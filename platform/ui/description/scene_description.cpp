#include "tarno/ui/description/scene_description.hpp"

#include "tarno/ui/description/description_builder.hpp"
#include "tarno/ui/description/path_bounds.hpp"

namespace ui {
namespace {

using Builder = DescriptionBuilder;

/// Adds the numbers of an outline: centre, radius and angles of a circle or a part of one, otherwise the
/// bounds.
void addOutline(Builder& builder, const Path& path) {
  const auto& elements = path.elements;
  const bool closed = elements.size() == 3 && std::holds_alternative<Path::Close>(elements[2]);
  const auto* arc = elements.size() == 2 || closed ? std::get_if<Path::Arc>(&elements[1]) : nullptr;
  if (!arc) {
    builder.text("outline", "path").rect(bounds(path));
    return;
  }
  builder.text("outline", closed ? "circle" : "arc")
      .number("centerX", arc->center.x)
      .number("centerY", arc->center.y)
      .number("radius", arc->radius);
  if (!closed) builder.number("start", arc->start.inDegrees()).number("end", arc->end.inDegrees());
}

struct ItemDescriber {
  Builder operator()(const FillPath& item) const {
    Builder builder{"fill"};
    builder.text("color", describe(item.color));
    addOutline(builder, item.path);
    return builder;
  }
  Builder operator()(const StrokePath& item) const {
    Builder builder{"stroke"};
    builder.text("color", describe(item.color))
        .number("lineWidth", item.style.lineWidth)
        .choice("lineCap", word(item.style.lineCap), "butt");
    addOutline(builder, item.path);
    return builder;
  }
  Builder operator()(const TextRun& item) const {
    Builder builder{"text"};
    builder.text("text", item.text)
        .text("font", describe(item.font.scaled(item.drawnScale)))
        .text("color", describe(item.color))
        .rect(item.box)
        .number("baseline", item.baseline)
        .number("maxLines", item.maxLines)
        .flag("truncated", item.truncated);
    return builder;
  }
};

Description describe(const AccessibilityElement& element) {
  return Builder{element.role == AccessibilityElement::Role::image ? "image" : "staticText"}
      .text("label", element.label)
      .rect(element.frame)
      .take();
}

}  // namespace

Description describe(const Scene& scene) {
  Builder builder{"Scene"};
  builder.number("width", scene.size.width).number("height", scene.size.height);
  for (const SceneItem& item : scene.items) builder.child(std::visit(ItemDescriber{}, item).take());
  return builder.take();
}

Description describeAccessibility(const Scene& scene) {
  Builder builder{"accessibility"};
  for (const AccessibilityElement& element : scene.accessibility) builder.child(describe(element));
  return builder.take();
}

}  // namespace ui
