#pragma once

#include <string>
#include <string_view>

namespace program {

/// Keeps standard output for writeOutput() alone: whatever else in the process prints there (a library's
/// diagnostic) goes to standard error from now on. Call first thing in main, before any thread starts.
void reserveStandardOutput();

/// Writes all of `bytes` to standard output. Throws Failure (EX_IOERR) when it cannot.
void writeOutput(std::string_view bytes);

/// `text` on one line, fit for a terminal: every control character, which could move the cursor or worse, is
/// a '?'.
std::string printable(std::string_view text);

}  // namespace program
