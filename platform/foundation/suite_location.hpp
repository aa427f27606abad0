#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace tarno {

/// Where a suite lives: one file in a folder of its own. Every save replaces the file, so that a program that
/// waits for saves watches the folder.
struct SuiteLocation {
  std::filesystem::path directory;  ///< ${XDG_DATA_HOME:-~/.local/share}/<suite name>, mode 0700
  std::filesystem::path file;       ///< defaults.json in it, mode 0600
};

/// Nothing when dataHome() is not known, or when `name` is not a plain file name.
std::optional<SuiteLocation> suiteLocation(std::string_view name);

}  // namespace tarno
