#include "tarno/tarno-widget/inspect_command.hpp"

#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "tarno/common/dates.hpp"
#include "tarno/common/output.hpp"
#include "tarno/render/text_engine.hpp"
#include "tarno/tarno-widget/inspection.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"

namespace extension {
namespace {

std::string jsonText(const Inspection& shown, widgetkit::WidgetFamily family) {
  const nlohmann::ordered_json result{{"family", name(family)},
                                      {"entry", json(shown.entry)},
                                      {"view", json(shown.view)},
                                      {"scene", json(shown.scene)},
                                      {"accessibility", json(shown.accessibility)["children"]}};
  return result.dump(2) + "\n";
}

std::string textForPeople(const Inspection& shown, widgetkit::WidgetFamily family) {
  std::string text = "entry " + std::string{name(family)} + "\n";
  const auto entry = json(shown.entry);
  for (const auto& [key, value] : entry.items()) text += "  " + key + " " + value.dump() + "\n";
  for (const auto* const part : {&shown.view, &shown.scene, &shown.accessibility})
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
  render::TextEngine text;
  const auto shown = inspection(widget, options.tile, text);
  program::writeOutput(options.asJSON ? jsonText(shown, options.tile.family)
                                      : textForPeople(shown, options.tile.family));
  return EX_OK;
}

int fonts() {
  const bool hasRounded = render::hasRoundedFace();
  program::writeOutput(hasRounded
                           ? "Quicksand\n"
                           : "Quicksand is missing, so texts are set in a plain sans-serif face; install "
                             "fonts-quicksand\n");
  return hasRounded ? EX_OK : EX_UNAVAILABLE;
}

}  // namespace extension
