#pragma once

#include <string>

namespace CLI {
class App;
}

namespace desktop {

/// Reads the settings file ${XDG_CONFIG_HOME:-~/.config}/tarno/desktop.ini, if there is one, into the options
/// of `app`. Throws program::Failure: EX_CONFIG if a line is wrong, EX_NOINPUT if the file cannot be read.
void readSettings(CLI::App& app);

/// Writes or removes the user's autostart entry, so that the desktop does or does not start this program at
/// login. Renames an existing entry with other content. Returns one line that says what was done.
/// Throws program::Failure: EX_CANTCREAT if the entry or its folder cannot be created, EX_IOERR if writing or
/// removing fails.
std::string setAutostart(bool on);

}  // namespace desktop
