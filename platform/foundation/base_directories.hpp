#pragma once

#include <filesystem>
#include <optional>

namespace tarno {

// The base directories of the user, as the XDG Base Directory Specification defines them. A variable is
// ignored unless its path is absolute. Without a usable HOME, the home directory comes from the user
// database; without that, the functions return nothing.

/// ${XDG_DATA_HOME:-~/.local/share}
std::optional<std::filesystem::path> dataHome();

/// ~/.local/share, even where XDG_DATA_HOME is set.
std::optional<std::filesystem::path> standardDataHome();

/// ${XDG_CONFIG_HOME:-~/.config}
std::optional<std::filesystem::path> configurationHome();

/// ${XDG_CACHE_HOME:-~/.cache}
std::optional<std::filesystem::path> cacheHome();

}  // namespace tarno
