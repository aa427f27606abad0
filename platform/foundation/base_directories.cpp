#include "tarno/foundation/base_directories.hpp"

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

std::optional<path> folderInHome(const char* folder) {
  auto home = absolutePathIn("HOME");
  if (!home) home = homeOfUser();
  if (home) *home /= folder;
  return home;
}

}  // namespace

std::optional<path> dataHome() {
  const auto folder = absolutePathIn("XDG_DATA_HOME");
  return folder ? folder : standardDataHome();
}

std::optional<path> standardDataHome() { return folderInHome(".local/share"); }

std::optional<path> configurationHome() {
  const auto folder = absolutePathIn("XDG_CONFIG_HOME");
  return folder ? folder : folderInHome(".config");
}

std::optional<path> cacheHome() {
  const auto folder = absolutePathIn("XDG_CACHE_HOME");
  return folder ? folder : folderInHome(".cache");
}

}  // namespace tarno
