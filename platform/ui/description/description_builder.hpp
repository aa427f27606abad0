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

  /// Adds a number, rounded to 3 decimals; infinity becomes a word. An absent number is left out.
  DescriptionBuilder& number(std::string_view name, std::optional<double> value);
  DescriptionBuilder& text(std::string_view name, std::string value);
  /// Adds one of a few words; left out if it is the default.
  DescriptionBuilder& choice(std::string_view name, std::string_view value, std::string_view usual);
  /// Left out if false.
  DescriptionBuilder& flag(std::string_view name, bool value);
  DescriptionBuilder& rect(const Rect& rect);

  DescriptionBuilder& child(Description child);

  /// Returns the finished description.
  Description take() { return std::move(description_); }

 private:
  Description description_;
};

/// "#RRGGBB", with "@alpha" behind it unless the colour is opaque: "#2E8F93@0.16".
std::string describe(const Color& color);
/// "12 semibold rounded".
std::string describe(const Font& font);

/// The name that an enumerator goes by in code.
std::string_view word(FontWeight weight);
std::string_view word(FontDesign design);
std::string_view word(LineCap cap);

}  // namespace ui
