#include "tarno-desktop/options.hpp"

#include <map>

#include "common/command_line.hpp"
#include "tarno-desktop/placement.hpp"

namespace desktop {
namespace {

using widgetkit::WidgetFamily;

const std::map<std::string, WidgetFamily> families{{"small", WidgetFamily::systemSmall},
                                                   {"medium", WidgetFamily::systemMedium},
                                                   {"large", WidgetFamily::systemLarge}};
const std::map<std::string, Layer> layers{
    {"desktop", Layer::desktop}, {"normal", Layer::normal}, {"above", Layer::above}};

/// An option that takes one of the words of `values`.
template <class Value>
void addWord(CLI::App& app, const std::string& name, Value& value, const std::map<std::string, Value>& values,
             const std::string& description) {
  app.add_option_function<std::string>(
         name, [&value, &values](const std::string& word) { value = values.at(word); }, description)
      ->check(CLI::IsMember(values))
      ->type_name("WORD");
}

}  // namespace

void addOptions(CLI::App& app, Options& options) {
  addWord(app, "--family", options.family, families, "Size: small, medium (default) or large");
  app.add_option_function<std::string>(
         "--anchor", [&options](const std::string& name) { options.anchor = *anchorNamed(name); },
         "Place: top-left, top, top-right (default), left, center, right, bottom-left, bottom or "
         "bottom-right")
      ->check(CLI::IsMember(anchorNames()))
      ->type_name("PLACE");
  app.add_option("--margin", options.margin,
                 "Points between the tile and the edges that it is anchored to (16)")
      ->check(CLI::Range(0, 10000))
      ->type_name("POINTS");
  app.add_option("--monitor", options.monitor,
                 "Connector of the monitor to show it on (default: the primary one)")
      ->type_name("NAME");
  addWord(app, "--layer", options.layer, layers,
          "Below all windows (desktop, the default), normal, or above them");
  app.add_flag("--list-monitors", options.listMonitors, "Print the monitors by connector, then exit");
}

}  // namespace desktop
