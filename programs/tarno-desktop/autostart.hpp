#pragma once

#include <string>

namespace desktop {

/// Has the desktop start this program after each login, or not any more: writes or removes the user's
/// autostart entry. Returns the line that says what was done. Throws program::Failure: EX_CANTCREAT when the
/// entry or its folder cannot be made, EX_IOERR when writing or removing fails.
std::string setAutostart(bool on);

}  // namespace desktop
