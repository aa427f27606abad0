#pragma once

#include <filesystem>
#include <optional>

namespace tarno {

// The base directories of the user, as the XDG Base Directory Specification defines them. A variable is
// ignored unless its path is absolute. Without a usable HOME, the home directory comes from the user
// database; without that, the functions return nothing.

/// Returns ${XDG_DATA_HOME:-~/.local/share}.
std::optional<std::filesystem::path> dataHome();

/// Returns ~/.local/share, even if XDG_DATA_HOME is set.
std::optional<std::filesystem::path> standardDataHome();

/// Returns ${XDG_CONFIG_HOME:-~/.config}.
std::optional<std::filesystem::path> configurationHome();

/// Returns ${XDG_CACHE_HOME:-~/.cache}.
std::optional<std::filesystem::path> cacheHome();

}  // namespace tarno
