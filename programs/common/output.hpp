#pragma once

#include <string>
#include <string_view>

namespace program {

/// Keeps standard output for writeOutput() alone: whatever else in the process prints there (a library's
/// diagnostic) goes to standard error from now on. Call first thing in main, before any thread starts.
void reserveStandardOutput();

/// Writes all of `bytes` to standard output. Throws Failure (EX_IOERR) when it cannot.
void writeOutput(std::string_view bytes);

/// The descriptor that writeOutput() writes to.
int outputDescriptor();

/// `text` on one line, safe for a terminal: a '?' replaces each control character (C0, DEL, C1), each line or
/// paragraph separator, each character that embeds, overrides or isolates a direction of writing (U+202A to
/// U+202E, U+2066 to U+2069) and each byte that is not UTF-8. Marks of direction (U+200E, U+200F, U+061C),
/// which Arabic and Hebrew texts need and which reorder no letters, stay.
std::string printable(std::string_view text);

/// The same for each of several lines.
std::string printableLines(std::string_view text);

}  // namespace program
