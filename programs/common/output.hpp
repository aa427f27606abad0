#pragma once

#include <string>
#include <string_view>

namespace program {

/// Reserves standard output for writeOutput(). Anything else that prints there, such as a library, prints to
/// standard error from now on. Call it first in main, before any thread starts.
void reserveStandardOutput();

/// Writes all of `bytes` to standard output. Throws Failure (EX_IOERR) if it cannot.
void writeOutput(std::string_view bytes);

/// Returns the descriptor that writeOutput() writes to.
int outputDescriptor();

/// Returns `text` on one line, safe for a terminal: '?' replaces control characters (C0, DEL, C1), line and
/// paragraph separators, characters that embed, override or isolate a writing direction (U+202A to U+202E,
/// U+2066 to U+2069), and bytes that are not UTF-8. Direction marks (U+200E, U+200F, U+061C) stay: Arabic and
/// Hebrew texts need them, and they reorder no letters.
std::string printable(std::string_view text);

/// Does the same for each of several lines.
std::string printableLines(std::string_view text);

}  // namespace program
