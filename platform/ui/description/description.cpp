#include "ui/description/description.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "ui/description/description_builder.hpp"

namespace ui {
namespace {

double rounded(double value) {
  const double result = std::round(value * 1000) / 1000;
  return std::isfinite(result) ? result + 0.0 : value;  // + 0.0 leaves no -0
}

/// Fixed notation with as many digits as it takes.
std::string digits(double value) {
  std::array<char, 400> buffer;
  const auto end = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::fixed).ptr;
  return {buffer.begin(), end};
}

std::string quoted(std::string_view text) {
  constexpr std::string_view hex = "0123456789abcdef";
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      result += "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      result += "\\u00";
      result += {hex[byte >> 4], hex[byte & 0xF]};
    } else {
      if (c == '"' || c == '\\') result += '\\';
      result += c;
    }
  }
  return result + '"';
}

/// How an outline shows an attribute: what people wrote always stands in quotes, words of ours only where
/// they have blanks.
struct OutlineValue {
  std::string_view name;

  std::string operator()(double value) const { return digits(value); }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(const std::string& value) const {
    const bool written = name == "text" || name == "label" || name == "systemName";
    return written || value.find(' ') != std::string::npos ? quoted(value) : value;
  }
};

void addOutline(std::string& text, const Description& description, std::size_t level) {
  text.append(2 * level, ' ');
  text += description.name;
  for (const auto& [name, value] : description.attributes)
    text.append(" ").append(name).append("=").append(std::visit(OutlineValue{name}, value));
  text += '\n';
  for (const Description& child : description.children) addOutline(text, child, level + 1);
}

}  // namespace

DescriptionBuilder& DescriptionBuilder::number(std::string_view name, std::optional<double> value) {
  if (!value) return *this;
  if (std::isfinite(*value))
    description_.attributes.emplace_back(name, rounded(*value));
  else
    description_.attributes.emplace_back(name, std::string{std::isnan(*value) ? "nan"
                                                           : *value > 0       ? "infinity"
                                                                              : "-infinity"});
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
    const auto byte = static_cast<unsigned>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
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

std::string outline(const Description& description) {
  std::string text;
  addOutline(text, description, 0);
  return text;
}

}  // namespace ui
