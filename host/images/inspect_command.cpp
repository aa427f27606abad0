#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "commands.hpp"
#include "host/tile.hpp"
#include "inspection.hpp"
#include "program/output.hpp"
#include "render/text_engine.hpp"

namespace images {
namespace {

/// Everything that is inspected, at one moment.
struct Inspected {
  widgetkit::AnyTimelineEntry entry;
  ui::Description view;
  ui::Scene scene;
};

std::string jsonText(const Inspected& inspected, widgetkit::WidgetFamily family) {
  nlohmann::ordered_json result;
  result["family"] = name(family);
  result["entry"] = json(inspected.entry);
  result["view"] = json(inspected.view);
  result["scene"] = json(describe(inspected.scene));
  result["accessibility"] = nlohmann::ordered_json::array();
  for (const auto& element : inspected.scene.accessibility) result["accessibility"].push_back(json(element));
  return result.dump(2) + "\n";
}

std::string textForPeople(const Inspected& inspected, widgetkit::WidgetFamily family) {
  std::string text = "entry " + std::string{name(family)} + "\n";
  const auto entry = json(inspected.entry);
  for (const auto& [key, value] : entry.items()) text += "  " + key + " " + value.dump() + "\n";
  text += "\nview\n" + outline(inspected.view);
  text += "\nscene\n" + outline(describe(inspected.scene));
  text += "\naccessibility\n";
  for (const auto& element : inspected.scene.accessibility) {
    const auto described = json(element);
    text += "  " + described["role"].get<std::string>() + " " + described["label"].dump() + "\n";
  }
  return text;
}

}  // namespace

int inspect(const widgetkit::WidgetConfiguration& widget, const InspectOptions& options) {
  render::TextEngine text;
  const auto entry = entryFor(widget, options.family, options.request);
  const Inspected inspected{.entry = entry,
                            .view = describe(entry.content({.widgetFamily = options.family})),
                            .scene = host::tileScene(entry, options.family, text)};
  program::writeOutput(options.asJSON ? jsonText(inspected, options.family)
                                      : textForPeople(inspected, options.family));
  return EX_OK;
}

}  // namespace images
