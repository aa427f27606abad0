#pragma once

#include <string>

namespace CLI {
class App;
}

namespace desktop {

/// Reads the settings file ${XDG_CONFIG_HOME:-~/.config}/tarno/desktop.ini, when there is one, by the options
/// of `app`. Throws program::Failure: EX_CONFIG when something in it is wrong, EX_NOINPUT when it cannot be
/// read.
void readSettings(CLI::App& app);

/// Has the desktop start this program after each login, or not any more: writes or removes the user's
/// autostart entry. An entry with other content is kept under another name. Returns the line that says what
/// was done. Throws program::Failure: EX_CANTCREAT when the entry or its folder cannot be made, EX_IOERR when
/// writing or removing fails.
std::string setAutostart(bool on);

}  // namespace desktop
