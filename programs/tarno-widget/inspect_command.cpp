#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "common/output.hpp"
#include "render/text_engine.hpp"
#include "tarno-widget/commands.hpp"
#include "tarno-widget/inspection.hpp"
#include "tarno-widget/tile.hpp"
#include "ui/description/scene_description.hpp"
#include "ui/description/view_description.hpp"

namespace extension {
namespace {

/// Everything that is inspected, at one moment.
struct Inspected {
  widgetkit::WidgetFamily family;
  widgetkit::AnyTimelineEntry entry;
  ui::Description view;
  ui::Description scene;
  ui::Description accessibility;
};

std::string jsonText(const Inspected& inspected) {
  const nlohmann::ordered_json result{{"family", name(inspected.family)},
                                      {"entry", json(inspected.entry)},
                                      {"view", json(inspected.view)},
                                      {"scene", json(inspected.scene)},
                                      {"accessibility", json(inspected.accessibility)["children"]}};
  return result.dump(2) + "\n";
}

std::string textForPeople(const Inspected& inspected) {
  std::string text = "entry " + std::string{name(inspected.family)} + "\n";
  const auto entry = json(inspected.entry);
  for (const auto& [key, value] : entry.items()) text += "  " + key + " " + value.dump() + "\n";
  for (const auto* const part : {&inspected.view, &inspected.scene, &inspected.accessibility})
    text += "\n" + outline(*part);
  return text;
}

}  // namespace

int inspect(const widgetkit::WidgetConfiguration& widget, const InspectOptions& options) {
  render::TextEngine text;
  const auto entry = entryFor(widget, options.family, options.request);
  const auto scene = tileScene(entry, options.family, text);
  const Inspected inspected{.family = options.family,
                            .entry = entry,
                            .view = describe(entry.content({.widgetFamily = options.family})),
                            .scene = describe(scene),
                            .accessibility = describeAccessibility(scene)};
  program::writeOutput(options.asJSON ? jsonText(inspected) : textForPeople(inspected));
  return EX_OK;
}

}  // namespace extension
