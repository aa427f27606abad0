#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "ui/scene.hpp"
#include "ui/view.hpp"

namespace ui {

/// A view or a scene in words and numbers: what inspection prints, as an outline or as JSON.
struct Description {
  using Value = std::variant<double, bool, std::string>;

  std::string name;
  /// In a fixed order, without those that are absent and choices that are at their default. Numbers are
  /// finite and rounded to 3 decimals; infinity is a word.
  std::vector<std::pair<std::string_view, Value>> attributes;
  std::vector<Description> children;
};

Description describe(const View& view);
/// What is drawn; the items inside a clip are its children.
Description describe(const Scene& scene);
/// What a screen reader stops at.
Description describeAccessibility(const Scene& scene);

/// "#RRGGBB", with "@alpha" behind it unless the colour is opaque: "#2E8F93@0.16".
std::string describe(const Color& color);
/// "12 semibold rounded".
std::string describe(const Font& font);

/// One line a node, two blanks deeper a level: `HStack spacing=14`.
std::string outline(const Description& description);

}  // namespace ui
