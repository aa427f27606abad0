#pragma once

#include <filesystem>
#include <optional>

namespace tarno {

// Where a user's files belong, as the XDG base directory specification has it: a variable counts only when
// its path is absolute. Where HOME is not absolute either, the user database says where the home is; nothing
// when it does not.

/// ${XDG_DATA_HOME:-~/.local/share}
std::optional<std::filesystem::path> dataHome();

/// ~/.local/share, whatever XDG_DATA_HOME says.
std::optional<std::filesystem::path> standardDataHome();

/// ${XDG_CONFIG_HOME:-~/.config}
std::optional<std::filesystem::path> configurationHome();

/// ${XDG_CACHE_HOME:-~/.cache}
std::optional<std::filesystem::path> cacheHome();

}  // namespace tarno
