#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace render {

/// The maximum length of a text in bytes. A longer text is cut and gets an ellipsis. The maximum is far more
/// than a tile can show, and small enough to shape any text quickly.
inline constexpr std::size_t longestDisplayText = 4096;

/// The line break inside a paragraph: Pango then treats the whole text as one paragraph.
inline constexpr std::string_view lineBreak = "\u2028";

inline constexpr std::string_view ellipsis = "\u2026";

struct DisplayText {
  std::string text;
  bool cut = false;  ///< the text was too long
};

/// Returns the form of `text` that is passed to Pango: valid UTF-8 of bounded length. Invalid bytes and
/// noncharacters become U+FFFD, control characters become blanks, and every kind of line break becomes
/// `lineBreak`, or a blank if `singleLine`. Embeddings and overrides of the writing direction are removed,
/// and so are line breaks and blanks at the end.
DisplayText displayText(std::string_view text, bool singleLine);

}  // namespace render
