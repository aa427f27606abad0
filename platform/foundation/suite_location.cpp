#include "tarno/foundation/suite_location.hpp"

#include <limits.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace tarno {
namespace {

using std::filesystem::path;

std::optional<path> absolutePathIn(const char* variable) {
  const char* const value = std::getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return path{value};
}

std::optional<path> homeOfUser() {
  std::array<char, 16384> texts{};
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr)
    return std::nullopt;
  if (found->pw_dir == nullptr || *found->pw_dir != '/') return std::nullopt;
  return path{found->pw_dir};
}

std::optional<path> dataHome() {
  if (auto data = absolutePathIn("XDG_DATA_HOME")) return data;
  auto home = absolutePathIn("HOME");
  if (!home) home = homeOfUser();
  if (!home) return std::nullopt;
  return *home / ".local" / "share";
}

bool isPlainFileName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.size() <= NAME_MAX &&
         name.find('/') == name.npos && name.find('\0') == name.npos;
}

}  // namespace

std::optional<SuiteLocation> suiteLocation(std::string_view name) {
  if (!isPlainFileName(name)) return std::nullopt;
  const auto home = dataHome();
  if (!home) return std::nullopt;
  const path directory = *home / name;
  return SuiteLocation{directory, directory / "defaults.json"};
}

}  // namespace tarno
