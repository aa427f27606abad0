#include <sstream>

#include "tarno/common/command_line.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/tarno-desktop/host.hpp"
#include "tarno/tarno-desktop/settings.hpp"

namespace {

/// Prints one line for each monitor: "HDMI-1 1920x1080+0+0 scale 1.5 primary".
void listMonitors(const desktop::Options& options) {
  const auto surface = desktop::openSurface(options).surface;
  std::ostringstream list;
  for (const auto& [connector, area, scale, isPrimary] : surface->state().monitors)
    list << connector << ' ' << area.width << 'x' << area.height << '+' << area.x << '+' << area.y
         << " scale " << scale << (isPrimary ? " primary\n" : "\n");
  program::writeOutput(list.str());
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Keeps a live tile with the lock status of your Mac on the desktop."};
  program::setExample(app, "tarno-desktop --family small --anchor bottom-right --margin 24");
  desktop::Options options;
  desktop::addOptions(app, options);

  return program::run(app, argc, argv, [&] {
    if (options.autostart) {
      if (app.parse_order().size() > 1)
        throw program::Failure{
            EX_USAGE, "--autostart cannot be combined with other options: put them into the settings file"};
      program::writeOutput(desktop::setAutostart(*options.autostart == "on"));
      return EX_OK;
    }
    desktop::readSettings(app);
    app.parse(argc, argv);  // again, so that the command line overrides the settings
    if (options.listMonitors) {
      listMonitors(options);
      return EX_OK;
    }
    std::optional<tarno::ClockOverride> clock;
    if (options.at) clock.emplace(*options.at);
    return desktop::showTile(options);
  });
}
