#pragma once

#include <nlohmann/json_fwd.hpp>

#include "tarno/tarno-widget/tile.hpp"
#include "tarno/ui/description/description.hpp"

namespace extension {

/// Everything between a request and the pixels, at one moment.
struct Inspection {
  widgetkit::AnyTimelineEntry entry;
  ui::Description view;
  ui::Description scene;
  ui::Description accessibility;
};

/// Asks for an entry, builds its view once and lays that out, all for one reading of the clock.
Inspection inspection(const widgetkit::WidgetConfiguration& widget, const TileOptions& tile,
                      ui::TextMeasurer& measurer);

/// "date", "status" (the record, or null) and "last_refresh" (a date, or null).
nlohmann::ordered_json json(const widgetkit::AnyTimelineEntry& entry);

/// The attributes of one node, as an object.
nlohmann::ordered_json attributes(const ui::Description& description);

/// "name", then the attributes, then "children" where there are any.
nlohmann::ordered_json json(const ui::Description& description);

}  // namespace extension
