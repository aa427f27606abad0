#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "commands.hpp"
#include "host/tile.hpp"
#include "inspection.hpp"
#include "program/dates.hpp"
#include "program/output.hpp"

namespace images {

int timeline(const widgetkit::WidgetConfiguration& widget, widgetkit::WidgetFamily family) {
  const auto timeline = widget.provider->timeline(host::requestContext(family));
  nlohmann::ordered_json result;
  for (const auto& entry : timeline.entries) result["entries"].push_back(json(entry));
  result["reload_after"] = program::dateText(timeline.policy.date());
  program::writeOutput(result.dump(2) + "\n");
  return EX_OK;
}

}  // namespace images
