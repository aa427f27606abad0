#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace tarno {

/// The place of a suite: one file in a folder of its own. Every save replaces the file, so watch the folder
/// to wait for saves.
struct SuiteLocation {
  std::filesystem::path directory;  ///< ${XDG_DATA_HOME:-~/.local/share}/<suite name>, mode 0700
  std::filesystem::path file;       ///< defaults.json in it, mode 0600
};

/// Returns the place of the suite `name`; nothing if dataHome() is unknown or `name` is not a plain file
/// name.
std::optional<SuiteLocation> suiteLocation(std::string_view name);

}  // namespace tarno
