#include "tarno/ui/description/description_builder.hpp"

#include <algorithm>
#include <cmath>

namespace ui {
namespace {

double rounded(double value) {
  return std::round(value * 1000) / 1000 + 0.0;  // + 0.0 leaves no -0
}

}  // namespace

DescriptionBuilder& DescriptionBuilder::number(std::string_view name, std::optional<double> value) {
  if (!value) return *this;
  if (std::isinf(*value)) return text(name, "infinity");
  description_.attributes.emplace_back(name, rounded(*value));
  return *this;
}

DescriptionBuilder& DescriptionBuilder::text(std::string_view name, std::string value) {
  description_.attributes.emplace_back(name, std::move(value));
  return *this;
}

DescriptionBuilder& DescriptionBuilder::choice(std::string_view name, std::string_view value,
                                               std::string_view usual) {
  return value == usual ? *this : text(name, std::string{value});
}

DescriptionBuilder& DescriptionBuilder::flag(std::string_view name, bool value) {
  if (value) description_.attributes.emplace_back(name, true);
  return *this;
}

DescriptionBuilder& DescriptionBuilder::rect(const Rect& rect) {
  return number("x", rect.origin.x)
      .number("y", rect.origin.y)
      .number("width", rect.size.width)
      .number("height", rect.size.height);
}

DescriptionBuilder& DescriptionBuilder::child(Description child) {
  description_.children.push_back(std::move(child));
  return *this;
}

std::string_view word(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular: return "regular";
    case FontWeight::medium: return "medium";
    case FontWeight::semibold: return "semibold";
    case FontWeight::bold: return "bold";
  }
  return "";
}

std::string_view word(FontDesign design) { return design == FontDesign::rounded ? "rounded" : "standard"; }

std::string_view word(LineCap cap) { return cap == LineCap::round ? "round" : "butt"; }

std::string describe(const Color& color) {
  constexpr std::string_view hex = "0123456789ABCDEF";
  std::string text = "#";
  for (const double component : {color.red, color.green, color.blue}) {
    const auto byte = static_cast<unsigned>(byteOf(component));
    text += {hex[byte >> 4], hex[byte & 0xF]};
  }
  if (color.alpha != 1) text.append("@").append(digits(rounded(color.alpha)));
  return text;
}

std::string describe(const Font& font) {
  std::string text = digits(rounded(font.size));
  text.append(" ").append(word(font.fontWeight));
  if (font.fontDesign != FontDesign::standard) text.append(" ").append(word(font.fontDesign));
  return text;
}

}  // namespace ui
