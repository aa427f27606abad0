#include "tarno/foundation/suite_location.hpp"

#include <limits.h>

#include "tarno/foundation/base_directories.hpp"

namespace tarno {
namespace {

bool isPlainFileName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.size() <= NAME_MAX &&
         name.find('/') == name.npos && name.find('\0') == name.npos;
}

}  // namespace

std::optional<SuiteLocation> suiteLocation(std::string_view name) {
  if (!isPlainFileName(name)) return std::nullopt;
  const auto home = dataHome();
  if (!home) return std::nullopt;
  const std::filesystem::path directory = *home / name;
  return SuiteLocation{directory, directory / "defaults.json"};
}

}  // namespace tarno
