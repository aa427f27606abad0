#pragma once

#include <optional>
#include <string>

#include "tarno/shared/model/status_snapshot.hpp"
#include "tarno/ui/color.hpp"

/// The colours of the widget, and the colour and symbol of each status.
namespace TarnoMacWidgetStyle {

using ui::Color;

inline constexpr Color paper = Color::sRGB(0.969, 0.98, 0.973);  ///< background of the tile
inline constexpr Color ink = Color::sRGB(0.09, 0.129, 0.165);    ///< primary text
inline constexpr Color muted =
    Color::sRGB(0.38, 0.443, 0.49);  ///< secondary text; unknown, stale or no status
inline constexpr Color line = Color::sRGB(0.851, 0.886, 0.894);    ///< track ring, inactive dot
inline constexpr Color teal = Color::sRGB(0.18, 0.561, 0.576);     ///< locked; active dot
inline constexpr Color tealDark = Color::sRGB(0.078, 0.4, 0.416);  ///< symbol of an active dot, presence pill
inline constexpr Color coral = Color::sRGB(0.933, 0.427, 0.341);   ///< unlocked
inline constexpr Color periwinkle = Color::sRGB(0.439, 0.471, 0.698);  ///< age pill
inline constexpr Color gold = Color::sRGB(0.847, 0.608, 0.212);        ///< locking

/// Returns the accent colour of a status report; `muted` when it is stale, unknown or absent.
Color statusColor(const std::optional<TarnoMacStatusSnapshot>& snapshot);

/// Returns the name of the symbol for a status report; a stale report has its own symbol.
std::string statusIcon(const std::optional<TarnoMacStatusSnapshot>& snapshot);

}  // namespace TarnoMacWidgetStyle
