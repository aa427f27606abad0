#include "tarno-desktop/autostart.hpp"

#include "common/failure.hpp"
#include "common/files.hpp"
#include "tarno-desktop/options.hpp"

namespace desktop {
namespace {

/// `text` with `mark` before each of `characters`.
std::string marked(const std::string& text, std::string_view characters, char mark = '\\') {
  std::string result;
  for (const char c : text) {
    if (characters.find(c) != characters.npos) result += mark;
    result += c;
  }
  return result;
}

/// With the program's path: a login may know another PATH. Without that file the entry is skipped.
std::string entry() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe").string();
  // The Desktop Entry Specification: quoted as an argument (section 7), then as a string (section 4).
  const auto argument = marked(marked(marked(program, "\"`$\\"), "%", '%'), "\\");
  return "[Desktop Entry]\nType=Application\nName=Tarno\nIcon=tarno-desktop\nTryExec=" +
         marked(program, "\\") + "\nExec=\"" + argument + "\"\n";
}

}  // namespace

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
  program::writeFile(file, entry());
  return "Wrote " + file.string() + ": the tile starts at every login.\n";
}

}  // namespace desktop
