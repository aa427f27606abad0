#include "tarno-widget/tile.hpp"

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

ui::Scene tileScene(const widgetkit::AnyTimelineEntry& entry, WidgetFamily family,
                    ui::TextMeasurer& measurer) {
  return ui::layout(entry.content({.widgetFamily = family}),
                    {.size = tileSize(family), .contentMargin = contentMargin, .cornerRadius = cornerRadius},
                    measurer);
}

widgetkit::TimelineProviderContext requestContext(WidgetFamily family, bool isPreview) {
  return {.family = family, .isPreview = isPreview, .displaySize = tileSize(family)};
}

}  // namespace extension
