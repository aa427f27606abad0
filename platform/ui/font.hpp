#pragma once

namespace ui {

enum class FontWeight { regular, medium, semibold, bold };

/// `standard` is the plain font of the system; `rounded` is a font whose strokes have round ends.
enum class FontDesign { standard, rounded };

/// The named sizes.
enum class TextStyle { title3, body, caption, caption2 };

/// Returns the size of a text style in points.
constexpr double textStyleSize(TextStyle style) {
  switch (style) {
    case TextStyle::title3: return 20;
    case TextStyle::body: break;
    case TextStyle::caption: return 12;
    case TextStyle::caption2: return 10;
  }
  return 15;
}

/// A design and weight of the system font at a size in points.
struct Font {
  double size = 13;
  FontWeight fontWeight = FontWeight::regular;
  FontDesign fontDesign = FontDesign::standard;

  static constexpr Font system(double size) { return {.size = size}; }
  static constexpr Font system(TextStyle style) { return {.size = textStyleSize(style)}; }

  constexpr Font weight(FontWeight value) const { return {size, value, fontDesign}; }
  constexpr Font rounded() const { return {size, fontWeight, FontDesign::rounded}; }
  constexpr Font scaled(double factor) const { return {size * factor, fontWeight, fontDesign}; }

  friend bool operator==(const Font&, const Font&) = default;
};

}  // namespace ui
