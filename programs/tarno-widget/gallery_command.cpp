#include <nlohmann/json.hpp>

#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/tarno-widget/commands.hpp"
#include "tarno/tarno-widget/localization.hpp"

namespace extension {
namespace {

std::string jsonText(const Widget& widget) {
  nlohmann::ordered_json result{{"kind", widget.kind},
                                {"display_name", localized(widget.displayName)},
                                {"description", localized(widget.widgetDescription)},
                                {"families", nlohmann::ordered_json::array()}};
  for (const auto family : widget.families) result["families"].push_back(name(family));
  return result.dump(2) + "\n";
}

std::string textForPeople(const Widget& widget) {
  std::string families;
  for (const auto family : widget.families) {
    const auto size = tileSize(family);
    char line[64];
    std::snprintf(line, sizeof line, "  %-13s %g x %g points\n", std::string{name(family)}.c_str(),
                  size.width, size.height);
    families += line;
  }
  return program::printableLines(localized(widget.displayName) + "\n" + localized(widget.widgetDescription) +
                                 "\nkind " + widget.kind + "\n" + families);
}

void drawPreviews(const Widget& widget, const std::filesystem::path& folder, double scale) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    throw program::Failure{EX_CANTCREAT, "cannot create " + folder.string() + ": " + error.message()};
  for (const auto family : widget.families) {
    const auto file = folder / (widget.kind + "-" + std::string{name(family)} + ".png");
    render(widget, {.tile = {family, Request::preview}, .output = file, .scale = scale});
  }
}

}  // namespace

int gallery(const Widget& widget, const GalleryOptions& options) {
  const tarno::ClockOverride oneReading{tarno::now()};
  if (options.output) drawPreviews(widget, *options.output, options.scale);
  program::writeOutput(options.asJSON ? jsonText(widget) : textForPeople(widget));
  return EX_OK;
}

}  // namespace extension
