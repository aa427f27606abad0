#include "tarno/tarno-desktop/settings.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <sstream>

#include "tarno/common/failure.hpp"
#include "tarno/common/files.hpp"
#include "tarno/foundation/base_directories.hpp"

namespace desktop {
namespace {

/// Returns the path of a file in the configuration home; empty if that is unknown.
std::filesystem::path configurationFile(const char* name) {
  const auto home = tarno::configurationHome();
  return home ? *home / name : std::filesystem::path{};
}

/// Returns `text` with `mark` before each of `characters`.
std::string marked(const std::string& text, std::string_view characters, char mark = '\\') {
  std::string result;
  for (const char c : text) {
    if (characters.find(c) != characters.npos) result += mark;
    result += c;
  }
  return result;
}

/// Has the full path of the program, because a login may have another PATH. Desktops skip the entry if the
/// program is gone.
std::string autostartEntry() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe").string();
  // The Desktop Entry Specification: quoted as an argument (section 7), then as a string (section 4).
  const auto argument = marked(marked(marked(program, "\"`$\\"), "%", '%'), "\\");
  return "[Desktop Entry]\nType=Application\nName=Tarno\nIcon=tarno-desktop\nTryExec=" +
         marked(program, "\\") + "\nExec=\"" + argument + "\"\n";
}

/// Renames an entry that a person made or edited. Returns its new path, or an empty one if there was none.
std::filesystem::path setAsideEdited(const std::filesystem::path& file, const std::string& entry) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::exists(fs::symlink_status(file, error))) return {};
  const bool isOurs = fs::is_regular_file(file, error) && fs::file_size(file, error) == entry.size() &&
                      program::readFile(file, entry.size()) == entry;
  if (isOurs) return {};
  auto kept = file.string() + ".bak";
  for (int number = 2; fs::exists(fs::symlink_status(kept, error)); ++number)
    kept = file.string() + ".bak-" + std::to_string(number);
  fs::rename(file, kept, error);
  if (error) throw program::Failure{EX_CANTCREAT, "cannot rename " + file.string() + ": " + error.message()};
  return kept;
}

/// Reads one line of the settings file. Throws CLI::Error.
void readSetting(CLI::App& app, const std::string& line) {
  const auto start = line.find_first_not_of(" \t\r");
  if (start == line.npos || line[start] == '#' || line[start] == ';') return;
  const auto equals = line.find('=');
  const auto key = line.substr(start, line.find_first_of(" \t=", start) - start);
  if (equals == line.npos || key.empty() || key[0] == '[')
    throw CLI::ValidationError{"expected a setting, such as margin = 16"};
  std::istringstream setting{line};
  app.clear();
  try {
    app.parse_from_stream(setting);
  } catch (const CLI::ConfigError&) {
    throw CLI::ValidationError{"unknown setting '" + key + "'"};
  } catch (const CLI::ArgumentMismatch&) {
    throw CLI::ValidationError{key + " takes one value"};
  }
}

}  // namespace

void readSettings(CLI::App& app) {
  const auto path = configurationFile("tarno/desktop.ini");
  std::error_code error;
  const auto type = std::filesystem::status(path, error).type();
  if (type == std::filesystem::file_type::not_found) return;
  if (type != std::filesystem::file_type::regular)  // opening a pipe would block
    throw program::Failure{EX_NOINPUT, "cannot read " + path.string() + ": " +
                                           (error ? error.message() : "it is not a regular file")};
  constexpr std::size_t most = 64 * 1024;
  if (std::filesystem::file_size(path, error) > most)
    throw program::Failure{EX_CONFIG, path.string() + ": larger than " + std::to_string(most) + " bytes"};
  std::istringstream settings{program::readFile(path, most)};
  std::string line;
  for (int number = 1; std::getline(settings, line); ++number) try {
      readSetting(app, line);
    } catch (const CLI::Error& invalid) {
      throw program::Failure{EX_CONFIG,
                             path.string() + ": line " + std::to_string(number) + ": " + invalid.what()};
    }
}

std::string setAutostart(bool on) {
  const auto file = configurationFile("autostart/tarno-desktop.desktop");
  if (file.empty()) throw program::Failure{EX_CANTCREAT, "neither XDG_CONFIG_HOME nor HOME names a folder"};
  std::error_code error;
  if (!on) {
    const bool wasOn = std::filesystem::remove(file, error);
    if (error) throw program::Failure{EX_IOERR, "cannot remove " + file.string() + ": " + error.message()};
    return wasOn ? "Removed " + file.string() + ": the tile no longer starts at login.\n"
                 : "Nothing to do: there is no " + file.string() + ".\n";
  }
  const auto folder = file.parent_path();
  if (!std::filesystem::create_directories(folder, error) && error)
    throw program::Failure{EX_CANTCREAT, "cannot create " + folder.string() + ": " + error.message()};
  const auto entry = autostartEntry();
  const auto kept = setAsideEdited(file, entry);
  program::writeFile(file, entry);
  return "Wrote " + file.string() + ": the tile starts at every login." +
         (kept.empty() ? "" : " The entry that was there is kept as " + kept.string() + ".") + "\n";
}

}  // namespace desktop
