#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "common/dates.hpp"
#include "common/output.hpp"
#include "tarno-widget/commands.hpp"
#include "tarno-widget/inspection.hpp"
#include "tarno-widget/tile.hpp"

namespace extension {

int timeline(const widgetkit::WidgetConfiguration& widget, widgetkit::WidgetFamily family) {
  const auto timeline = widget.provider->timeline(requestContext(family));
  nlohmann::ordered_json result;
  for (const auto& entry : timeline.entries) result["entries"].push_back(json(entry));
  result["reload_after"] = program::dateText(timeline.policy.date());
  program::writeOutput(result.dump(2) + "\n");
  return EX_OK;
}

}  // namespace extension
