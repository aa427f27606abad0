#include <sysexits.h>

#include <nlohmann/json.hpp>

#include "tarno/common/dates.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/render/text_engine.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/tarno-widget/commands.hpp"
#include "tarno/tarno-widget/description_json.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"

namespace extension {
namespace {

using nlohmann::ordered_json;

/// The results of all steps from a request to the scene.
struct Inspection {
  TarnoMacWidgetEntry entry;
  ui::Description view;
  ui::Description scene;
  ui::Description accessibility;
};

/// Asks for an entry, builds its view and lays it out, all for one reading of the clock.
Inspection inspection(const Widget& widget, const TileOptions& tile) {
  const tarno::ClockOverride oneReading{tarno::now()};
  const auto entry = entryFor(widget, tile);
  const auto view = widget.content(entry, {.widgetFamily = tile.family});
  render::TextEngine text;
  const auto scene = tileScene(view, tile.family, text);
  return {.entry = entry,
          .view = describe(view),
          .scene = describe(scene),
          .accessibility = describeAccessibility(scene)};
}

/// Returns an object with "date", "status" (the record or null) and "last_refresh" (a date or null).
ordered_json entryJSON(const TarnoMacWidgetEntry& entry) {
  ordered_json result{
      {"date", program::dateText(entry.date)}, {"status", nullptr}, {"last_refresh", nullptr}};
  if (entry.status) result["status"] = ordered_json::parse(TarnoJSON::encoder().encode(*entry.status));
  if (entry.lastRefresh) result["last_refresh"] = program::dateText(*entry.lastRefresh);
  return result;
}

std::string jsonText(const Inspection& shown, widgetkit::WidgetFamily family) {
  const ordered_json result{{"family", name(family)},
                            {"entry", entryJSON(shown.entry)},
                            {"view", json(shown.view)},
                            {"scene", json(shown.scene)},
                            {"accessibility", json(shown.accessibility)["children"]}};
  return result.dump(2) + "\n";
}

std::string textForPeople(const Inspection& shown, widgetkit::WidgetFamily family) {
  std::string text = "entry " + std::string{name(family)} + "\n";
  const auto entry = entryJSON(shown.entry);
  for (const auto& [key, value] : entry.items()) text += "  " + key + " " + value.dump() + "\n";
  for (const auto* const part : {&shown.view, &shown.scene, &shown.accessibility})
    text += "\n" + outline(*part);
  return program::printableLines(text);
}

}  // namespace

int timeline(const Widget& widget, widgetkit::WidgetFamily family) {
  const auto timeline = widgetkit::timeline(widget, {.family = family});
  ordered_json result;
  for (const auto& entry : timeline.entries) result["entries"].push_back(entryJSON(entry));
  result["reload_after"] = program::dateText(timeline.policy.date);
  program::writeOutput(result.dump(2) + "\n");
  return EX_OK;
}

int inspect(const Widget& widget, const InspectOptions& options) {
  const auto shown = inspection(widget, options.tile);
  program::writeOutput(options.asJSON ? jsonText(shown, options.tile.family)
                                      : textForPeople(shown, options.tile.family));
  return EX_OK;
}

int fonts() {
  const bool hasRounded = render::hasRoundedFace();
  program::writeOutput(hasRounded
                           ? "Quicksand\n"
                           : "Quicksand is missing, so texts are set in a plain sans-serif font; install "
                             "fonts-quicksand\n");
  return hasRounded ? EX_OK : EX_UNAVAILABLE;
}

}  // namespace extension
