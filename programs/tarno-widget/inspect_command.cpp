#include "tarno-widget/inspect_command.hpp"

#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "common/dates.hpp"
#include "common/output.hpp"
#include "foundation/date.hpp"
#include "render/text_engine.hpp"
#include "tarno-widget/inspection.hpp"
#include "ui/description/scene_description.hpp"
#include "ui/description/view_description.hpp"

namespace extension {
namespace {

/// Everything between a request and the pixels, at one moment.
struct Inspected {
  widgetkit::WidgetFamily family;
  nlohmann::ordered_json entry;
  ui::Description view;
  ui::Description scene;
  ui::Description accessibility;
};

Inspected inspected(const widgetkit::WidgetConfiguration& widget, const TileOptions& tile) {
  const foundation::ClockOverride oneReading{foundation::now()};
  const auto entry = entryFor(widget, tile);
  const auto view = entry.content({.widgetFamily = tile.family});
  render::TextEngine text;
  const auto scene = tileScene(view, tile.family, text);
  return {.family = tile.family,
          .entry = json(entry),
          .view = describe(view),
          .scene = describe(scene),
          .accessibility = describeAccessibility(scene)};
}

std::string jsonText(const Inspected& inspected) {
  const nlohmann::ordered_json result{{"family", name(inspected.family)},
                                      {"entry", inspected.entry},
                                      {"view", json(inspected.view)},
                                      {"scene", json(inspected.scene)},
                                      {"accessibility", json(inspected.accessibility)["children"]}};
  return result.dump(2) + "\n";
}

std::string textForPeople(const Inspected& inspected) {
  std::string text = "entry " + std::string{name(inspected.family)} + "\n";
  for (const auto& [key, value] : inspected.entry.items()) text += "  " + key + " " + value.dump() + "\n";
  for (const auto* const part : {&inspected.view, &inspected.scene, &inspected.accessibility})
    text += "\n" + outline(*part);
  return program::printableLines(text);
}

}  // namespace

int timeline(const widgetkit::WidgetConfiguration& widget, widgetkit::WidgetFamily family) {
  const auto timeline = widget.provider->timeline(requestContext(family));
  nlohmann::ordered_json result;
  for (const auto& entry : timeline.entries) result["entries"].push_back(json(entry));
  result["reload_after"] = program::dateText(timeline.policy.date());
  program::writeOutput(result.dump(2) + "\n");
  return EX_OK;
}

int inspect(const widgetkit::WidgetConfiguration& widget, const InspectOptions& options) {
  const auto everything = inspected(widget, options.tile);
  program::writeOutput(options.asJSON ? jsonText(everything) : textForPeople(everything));
  return EX_OK;
}

}  // namespace extension
