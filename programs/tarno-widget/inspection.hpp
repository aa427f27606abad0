#pragma once

#include <nlohmann/json_fwd.hpp>

#include "ui/description/description.hpp"
#include "widget/timeline/widget_entry.hpp"
#include "widgetkit/widget_configuration.hpp"

/// Entries, views and scenes as JSON.
namespace extension {

/// "date", "status" (the record, or null) and "last_refresh" (a date, or null).
nlohmann::ordered_json json(const widgetkit::AnyTimelineEntry& entry);

/// The attributes of one node, as an object.
nlohmann::ordered_json attributes(const ui::Description& description);

/// "name", then the attributes, then "children" where there are any.
nlohmann::ordered_json json(const ui::Description& description);

}  // namespace extension
