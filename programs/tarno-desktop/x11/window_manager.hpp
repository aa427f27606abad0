#pragma once

#include <string>
#include <string_view>

#include "x11/connection.hpp"
#include "x11/tile_window.hpp"

namespace desktop::x11 {

/// The name of the window manager that runs now; empty without one.
std::string windowManagerName(const Connection& connection);

/// The kind of window that does what `layer` means on a window manager of that name; the table that
/// script/desktop-matrix prints shows how well.
WindowKind windowKind(Layer layer, std::string_view windowManager);

/// Puts the tile back to its place in the stack of windows, if it is not there: in the desktop layer below
/// all others, but directly above the desktop of a file manager, which is a window too; in the layer above
/// over the highest window that does not fill the screen. Asks for events when such a desktop is restacked.
void restack(const Connection& connection, const TileWindow& tile);

}  // namespace desktop::x11
