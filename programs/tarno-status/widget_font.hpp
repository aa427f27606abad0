#pragma once

#include <optional>
#include <string>

namespace status {

/// What `tarno-widget fonts` says, the first line of it; nothing when the program does not lie beside this
/// one or cannot be run.
std::optional<std::string> widgetFontText();

}  // namespace status
