#include "tarno/tarno-widget/inspection.hpp"

#include <nlohmann/json.hpp>

#include "tarno/common/dates.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"
#include "tarno/widget/timeline/widget_entry.hpp"

namespace extension {

using nlohmann::ordered_json;

Inspection inspection(const widgetkit::WidgetConfiguration& widget, const TileOptions& tile,
                      ui::TextMeasurer& measurer) {
  const tarno::ClockOverride oneReading{tarno::now()};
  const auto entry = entryFor(widget, tile);
  const auto view = entry.content({.widgetFamily = tile.family});
  const auto scene = tileScene(view, tile.family, measurer);
  return {.entry = entry,
          .view = describe(view),
          .scene = describe(scene),
          .accessibility = describeAccessibility(scene)};
}

ordered_json json(const widgetkit::AnyTimelineEntry& entry) {
  const auto& value = std::any_cast<const TarnoMacWidgetEntry&>(entry.value);
  ordered_json result;
  result["date"] = program::dateText(value.date);
  result["status"] = nullptr;
  if (value.status) result["status"] = ordered_json::parse(TarnoJSON::encoder().encode(*value.status));
  result["last_refresh"] = nullptr;
  if (value.lastRefresh) result["last_refresh"] = program::dateText(*value.lastRefresh);
  return result;
}

ordered_json attributes(const ui::Description& description) {
  auto result = ordered_json::object();
  for (const auto& [key, value] : description.attributes)
    std::visit([&, name = std::string{key}](const auto& plain) { result[name] = plain; }, value);
  return result;
}

ordered_json json(const ui::Description& description) {
  ordered_json result{{"name", description.name}};
  result.update(attributes(description));
  for (const auto& child : description.children) result["children"].push_back(json(child));
  return result;
}

}  // namespace extension
