#include "tarno/render/shaped_text.hpp"

#include <algorithm>

namespace render {
namespace {

using AttributeList = tarno::Handle<PangoAttrList, pango_attr_list_unref>;

constexpr double points(int units) { return static_cast<double>(units) / PANGO_SCALE; }

/// Returns the position of the line break that ends the last permitted line of `text`, if more text follows;
/// otherwise npos.
std::size_t breakAfter(std::string_view text, const PangoLayoutLine* lastLine) {
  const std::size_t position = text.find(lineBreak, static_cast<std::size_t>(lastLine->start_index));
  return position + lineBreak.size() < text.size() ? position : std::string_view::npos;
}

void insert(PangoAttrList* attributes, PangoAttribute* attribute, std::size_t start, std::size_t end) {
  attribute->start_index = static_cast<guint>(start);
  attribute->end_index = static_cast<guint>(end);
  pango_attr_list_insert(attributes, attribute);
}

/// Returns the length in bytes of the character of `text` at `at`.
std::size_t lengthOf(std::string_view text, std::size_t at) {
  return static_cast<std::size_t>(g_utf8_skip[static_cast<unsigned char>(text[at])]);
}

bool isEastAsian(GUnicodeScript script) {
  return script == G_UNICODE_SCRIPT_HAN || script == G_UNICODE_SCRIPT_HIRAGANA ||
         script == G_UNICODE_SCRIPT_KATAKANA || script == G_UNICODE_SCRIPT_HANGUL;
}

/// Returns the language of the East Asian characters in `text`: Japanese if there is kana, Korean if there is
/// hangul. Otherwise returns null, and the locale decides. Without a language, the Chinese characters of a
/// sentence could come from one font and the rest from another.
PangoLanguage* eastAsianLanguage(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); at += lengthOf(text, at)) {
    const GUnicodeScript script = g_unichar_get_script(g_utf8_get_char(text.data() + at));
    if (isEastAsian(script) && script != G_UNICODE_SCRIPT_HAN)
      return pango_language_from_string(script == G_UNICODE_SCRIPT_HANGUL ? "ko" : "ja");
  }
  return nullptr;
}

/// Gives each run in another script a font that has all of it, including characters without a script.
/// Quicksand is a Latin font that has only a few letters of other scripts (Greek π). Digits and ASCII
/// characters stay in the font itself.
void addFacesOfScripts(PangoAttrList* attributes, std::string_view text) {
  std::size_t start = 0;
  GUnicodeScript runScript = G_UNICODE_SCRIPT_LATIN;
  PangoLanguage* const language = eastAsianLanguage(text);
  const auto endRun = [&](std::size_t end) {
    if (const char* families = familiesOfScript(runScript))
      insert(attributes, pango_attr_family_new(families), start, end);
    if (language && isEastAsian(runScript)) insert(attributes, pango_attr_language_new(language), start, end);
  };
  for (std::size_t at = 0; at < text.size(); at += lengthOf(text, at)) {
    const GUnicodeScript script = g_unichar_get_script(g_utf8_get_char(text.data() + at));
    const bool ofNoScript =
        script == G_UNICODE_SCRIPT_INHERITED || (script == G_UNICODE_SCRIPT_COMMON && (text[at] & 0x80));
    if (script == runScript || ofNoScript) continue;
    endRun(at);
    start = at;
    runScript = script;
  }
  endRun(text.size());
}

AttributeList attributesOf(std::string_view text) {
  AttributeList attributes(pango_attr_list_new());
  // No hyphens are added, even where a word is broken.
  pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
  addFacesOfScripts(attributes.get(), text);
  return attributes;
}

/// Returns the width of `line` in Pango units. Pango's own function would also load the metrics of each font,
/// which takes as long as the rest of the layout.
int width(const PangoLayoutLine* line) {
  int sum = 0;
  for (const GSList* node = line->runs; node; node = node->next)
    sum += pango_glyph_string_get_width(static_cast<const PangoGlyphItem*>(node->data)->glyphs);
  return sum;
}

}  // namespace

ShapedText::ShapedText(PangoContext* context, const FontDescription& face, const LineExtent& extent,
                       const DisplayText& text, int width, int maxLines)
    : layout_(pango_layout_new(context)) {
  pango_layout_set_font_description(layout_.get(), face.get());
  pango_layout_set_wrap(layout_.get(), PANGO_WRAP_WORD_CHAR);
  pango_layout_set_ellipsize(layout_.get(), PANGO_ELLIPSIZE_END);
  pango_layout_set_height(layout_.get(), -maxLines);
  if (width != unlimited) pango_layout_set_width(layout_.get(), width);

  setText(text.text);
  pango_layout_set_attributes(layout_.get(), attributesOf(text.text).get());
  const bool cut = cutBetweenLines(text.text, maxLines);
  metrics_.truncated = cut || text.cut || pango_layout_is_ellipsized(layout_.get());

  metrics_.baseline = extent.ascent;
  lineHeight_ = extent.ascent + extent.descent;
  placeLines();
  const bool asWideAsItGets =
      !pango_layout_is_wrapped(layout_.get()) && !pango_layout_is_ellipsized(layout_.get());
  widest_ = asWideAsItGets ? unlimited : width;
  narrowest_ = std::min(narrowest_, width);
}

void ShapedText::setText(std::string_view text) {
  pango_layout_set_text(layout_.get(), text.data(), static_cast<int>(text.size()));
}

/// Cuts the text at a line break after line `maxLines`. Pango itself cuts a last line that is too wide; but
/// it appends the text after a line break if that fits, and it ignores the number of lines if there is no
/// width.
bool ShapedText::cutBetweenLines(std::string_view text, int maxLines) {
  if (pango_layout_get_line_count(layout_.get()) < maxLines) return false;
  const std::size_t end = breakAfter(text, pango_layout_get_line_readonly(layout_.get(), maxLines - 1));
  if (end == std::string_view::npos) return false;
  setText(std::string(text.substr(0, end)).append(ellipsis));
  return true;
}

void ShapedText::placeLines() {
  const int count = pango_layout_get_line_count(layout_.get());
  for (int i = 0; i < count; ++i) {
    PangoLayoutLine* line = pango_layout_get_line_readonly(layout_.get(), i);
    lines_.push_back({line, points(width(line))});
    narrowest_ = std::max(narrowest_, width(line));
  }
  rightToLeft_ = lines_.front().glyphs->resolved_dir == PANGO_DIRECTION_RTL;
  for (Line& line : lines_) line.x = rightToLeft_ ? points(narrowest_) - line.x : 0;
  metrics_.size = {points(narrowest_), count * lineHeight_};
}

}  // namespace render
