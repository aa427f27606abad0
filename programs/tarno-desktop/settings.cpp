#include "tarno/tarno-desktop/settings.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <sstream>

#include "tarno/common/command_line.hpp"
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

/// Returns the content of the autostart entry. It has the full path of the program, because PATH may be
/// another at login. Desktops skip the entry if the program does not exist any more.
std::string autostartEntry() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe").string();
  // The Desktop Entry Specification requires quoting as an argument (section 7), then as a string (section
  // 4).
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

/// Returns `text` without blanks at its ends.
std::string trimmed(const std::string& text) {
  constexpr const char* blanks = " \t\r";
  const auto start = text.find_first_not_of(blanks);
  return start == text.npos ? "" : text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

/// Returns a value without its quotation marks and without the comment after it.
std::string valueOf(const std::string& text) {
  const auto end = text[0] == '"' || text[0] == '\'' ? text.find(text[0], 1) : text.npos;
  if (end != text.npos && (end + 1 == text.size() || trimmed(text.substr(end + 1))[0] == '#'))
    return text.substr(1, end - 1);
  return trimmed(text.substr(0, text.find(" #")));
}

/// Reads one line of the settings file. Throws CLI::Error.
void readSetting(CLI::App& app, const std::string& line) {
  const auto setting = trimmed(line);
  if (setting.empty() || setting[0] == '#' || setting[0] == ';') return;
  const auto equals = setting.find('=');
  const auto key = trimmed(setting.substr(0, equals));
  if (equals == setting.npos || key.empty() || key[0] == '[')
    throw CLI::ValidationError{"not a setting such as margin = 16"};
  const auto* const option = app.get_option_no_throw("--" + key);
  if (!option || !option->get_configurable()) throw CLI::ValidationError{"unknown setting '" + key + "'"};
  const auto value = valueOf(trimmed(setting.substr(equals + 1)));
  const auto isSwitch = option->get_expected_max() == 0;
  if (const auto wrong = program::oneOf({"true", "false", "on", "off"})(value); isSwitch && !wrong.empty())
    throw CLI::ValidationError{key + ": " + wrong};
  if (value.empty()) throw CLI::ValidationError{key + ": the value is missing"};
  try {
    app.parse(std::vector{"--" + key + "=" + value});
  } catch (const CLI::Error& invalid) {  // it names the option
    const std::string words = invalid.what();
    throw CLI::ValidationError{words.substr(words.starts_with("--") ? 2 : 0)};
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
  return "Wrote " + file.string() + ": the tile starts at login." +
         (kept.empty() ? "" : " The entry that was there is kept as " + kept.string() + ".") + "\n";
}

}  // namespace desktop
