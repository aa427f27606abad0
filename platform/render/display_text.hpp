#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace render {

/// A longer text is cut to this many bytes and gets an ellipsis: far more than a tile can show, and little
/// enough that shaping stays quick whatever a text holds.
inline constexpr std::size_t longestDisplayText = 4096;

/// What marks a line break inside a paragraph, so that Pango takes the whole text as one paragraph.
inline constexpr std::string_view lineBreak = "\u2028";

inline constexpr std::string_view ellipsis = "\u2026";

struct DisplayText {
  std::string text;
  bool cut = false;  ///< it was too long
};

/// `text` as it is handed to Pango: valid UTF-8 of bounded length, with U+FFFD for every byte that is none
/// and every noncharacter, a blank for every control character, and every way to write a line break as
/// `lineBreak`, or as a blank when `singleLine`. Embeddings and overrides of the writing direction are left
/// out, and so are line breaks and blanks at the end.
DisplayText displayText(std::string_view text, bool singleLine);

}  // namespace render
