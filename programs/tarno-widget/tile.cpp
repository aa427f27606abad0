#include "tarno/tarno-widget/tile.hpp"

namespace extension {

using widgetkit::WidgetFamily;

ui::Size tileSize(WidgetFamily family) {
  switch (family) {
    case WidgetFamily::systemSmall: return {170, 170};
    case WidgetFamily::systemMedium: return {364, 170};
    case WidgetFamily::systemLarge: return {364, 382};
  }
  return {};
}

std::optional<WidgetFamily> familyNamed(std::string_view word) {
  if (word == "small") return WidgetFamily::systemSmall;
  if (word == "medium") return WidgetFamily::systemMedium;
  if (word == "large") return WidgetFamily::systemLarge;
  return std::nullopt;
}

TarnoMacWidgetEntry entryFor(const Widget& widget, const TileOptions& tile) {
  switch (tile.request) {
    case Request::placeholder: return widget.provider.placeholder({.family = tile.family});
    case Request::preview: return snapshot(widget, {.family = tile.family, .isPreview = true});
    case Request::timeline: break;
  }
  return timeline(widget, {.family = tile.family}).entries.front();
}

ui::Scene tileScene(const ui::View& view, WidgetFamily family, ui::TextMeasurer& measurer) {
  return ui::layout(view,
                    {.size = tileSize(family), .contentMargin = contentMargin, .cornerRadius = cornerRadius},
                    measurer);
}

}  // namespace extension
