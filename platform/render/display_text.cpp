#include "tarno/render/display_text.hpp"

#include <glib.h>

#include <utility>

namespace render {
namespace {

bool breaksLine(gunichar c) { return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029; }

/// Returns whether `c` is a control character. Pango would draw it as a box, skip it, or treat it as a tab.
bool isControl(gunichar c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

/// Returns whether `c` is one of U+FDD0 to U+FDEF or of the last two code points of a plane. Cairo cannot
/// write them into a PDF.
bool isNoncharacter(gunichar c) { return (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE; }

/// Returns whether `c` starts or ends an embedding or override, which would reorder the whole paragraph.
/// Isolates affect only their own text.
bool overridesDirection(gunichar c) { return c >= 0x202A && c <= 0x202E; }

/// Removes line breaks and blanks at the end.
void trimEnd(std::string& text) {
  while (text.ends_with(' ') || text.ends_with(lineBreak))
    text.resize(text.size() - (text.ends_with(' ') ? 1 : lineBreak.size()));
}

}  // namespace

DisplayText displayText(std::string_view text, bool singleLine) {
  const bool tooLong = text.size() > longestDisplayText;
  if (tooLong) text = text.substr(0, longestDisplayText);
  const std::string_view breakMark = singleLine ? " " : lineBreak;

  std::string result;
  result.reserve(text.size() + ellipsis.size());
  while (!text.empty()) {
    // glib treats a NUL as the end of the text
    const gunichar c =
        text.front() == '\0' ? 0 : g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    const bool valid = c < 0x110000;
    if (!valid && tooLong && text.size() < 4) break;  // the limit divides this character
    const std::size_t length = valid ? static_cast<std::size_t>(g_unichar_to_utf8(c, nullptr)) : 1;
    if (!valid || isNoncharacter(c))
      result += "\uFFFD";
    else if (breaksLine(c))
      result += breakMark;
    else if (isControl(c))
      result += ' ';
    else if (!overridesDirection(c))
      result += text.substr(0, length);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : length);
  }
  trimEnd(result);
  if (tooLong) result += ellipsis;
  return {std::move(result), tooLong};
}

}  // namespace render
