#pragma once

#include <optional>
#include <string_view>

#include "tarno/ui/layout.hpp"
#include "tarno/widget/extension/status_widget.hpp"

namespace extension {

/// The widget that the extension's bundle passes to this program.
using Widget = TarnoMacStatusWidget::Configuration;

/// The space between the edges of a tile and its content, in points.
inline constexpr double contentMargin = 16;

/// The radius of the corners of a tile, in points. The host clips the tile to them.
inline constexpr double cornerRadius = 22;

/// Returns the size of a tile in points: small is 170 x 170, medium 364 x 170, large 364 x 382.
ui::Size tileSize(widgetkit::WidgetFamily family);

/// Returns the family of this name on a command line (small, medium or large), or nothing.
std::optional<widgetkit::WidgetFamily> familyNamed(std::string_view word);

/// What to ask the provider for.
enum class Request { timeline, placeholder, preview };

/// Which tile a command is about.
struct TileOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  Request request = Request::timeline;
};

/// Asks the provider for an entry and returns it. For a timeline, it is the first entry.
TarnoMacWidgetEntry entryFor(const Widget& widget, const TileOptions& tile);

/// Lays out the view of an entry as a tile.
ui::Scene tileScene(const ui::View& view, widgetkit::WidgetFamily family, ui::TextMeasurer& measurer);

}  // namespace extension
