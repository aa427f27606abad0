#pragma once

#include <optional>
#include <string_view>

#include "tarno/ui/layout.hpp"
#include "tarno/widget/extension/status_widget.hpp"

namespace extension {

/// The widget that the extension's bundle hands to this program.
using Widget = TarnoMacStatusWidget::Configuration;

/// The space between a tile's edge and its content, on every side, in points.
inline constexpr double contentMargin = 16;

/// The radius to which the host clips a tile's corners, in points.
inline constexpr double cornerRadius = 22;

/// The size of a family's tile in points: 170 x 170, 364 x 170, 364 x 382.
ui::Size tileSize(widgetkit::WidgetFamily family);

/// What a command line calls the families.
inline constexpr std::string_view familyWords = "small, medium or large";

/// The family that one of these words names; nothing for any other word.
std::optional<widgetkit::WidgetFamily> familyNamed(std::string_view word);

/// What to ask the provider for.
enum class Request { timeline, placeholder, preview };

/// Which tile a command is about.
struct TileOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  Request request = Request::timeline;
};

/// The entry that answers a request; of a timeline, the first.
TarnoMacWidgetEntry entryFor(const Widget& widget, const TileOptions& tile);

/// Lays out an entry's view as a tile.
ui::Scene tileScene(const ui::View& view, widgetkit::WidgetFamily family, ui::TextMeasurer& measurer);

}  // namespace extension
