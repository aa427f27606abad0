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

/// The corner radius that the host clips a tile to, in points.
inline constexpr double cornerRadius = 22;

/// Returns the size of a tile in points: 170 x 170, 364 x 170, 364 x 382.
ui::Size tileSize(widgetkit::WidgetFamily family);

/// Returns the family of this name on a command line (small, medium or large), or nothing.
std::optional<widgetkit::WidgetFamily> familyNamed(std::string_view word);

/// What to request from the provider.
enum class Request { timeline, placeholder, preview };

/// Which tile a command is about.
struct TileOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  Request request = Request::timeline;
};

/// Returns the entry for a request; of a timeline, the first.
TarnoMacWidgetEntry entryFor(const Widget& widget, const TileOptions& tile);

/// Lays out an entry's view as a tile.
ui::Scene tileScene(const ui::View& view, widgetkit::WidgetFamily family, ui::TextMeasurer& measurer);

}  // namespace extension
