#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tarno/ui/color.hpp"
#include "tarno/ui/description/description.hpp"
#include "tarno/ui/font.hpp"
#include "tarno/ui/geometry.hpp"
#include "tarno/ui/path.hpp"

namespace ui {

/// Builds a Description attribute by attribute.
class DescriptionBuilder {
 public:
  explicit DescriptionBuilder(std::string name) { description_.name = std::move(name); }

  /// Adds a number, rounded to 3 decimals; infinity becomes a word. An absent number adds nothing.
  DescriptionBuilder& number(std::string_view name, std::optional<double> value);
  DescriptionBuilder& text(std::string_view name, std::string value);
  /// Adds one of a few words, unless it is the default, `usual`.
  DescriptionBuilder& choice(std::string_view name, std::string_view value, std::string_view usual);
  /// Adds a flag if it is true.
  DescriptionBuilder& flag(std::string_view name, bool value);
  DescriptionBuilder& rect(const Rect& rect);

  DescriptionBuilder& child(Description child);

  /// Returns the finished description.
  Description take() { return std::move(description_); }

 private:
  Description description_;
};

/// Returns "#RRGGBB", followed by "@" and the alpha value unless the colour is opaque: "#2E8F93@0.16".
std::string describe(const Color& color);
/// Returns the size, weight and design: "12 semibold rounded".
std::string describe(const Font& font);

/// Returns the name of an enumerator as it is written in code.
std::string_view word(FontWeight weight);
std::string_view word(FontDesign design);
std::string_view word(LineCap cap);

}  // namespace ui
