#include <cmath>

#include "common/command_line.hpp"
#include "common/output.hpp"
#include "tarno-widget/commands.hpp"
#include "tarno-widget/extension.hpp"
#include "tarno-widget/localization.hpp"
#include "tarno-widget/tile.hpp"

namespace {

void addFamilyOption(CLI::App& app, widgetkit::WidgetFamily& family) {
  const auto read = [&family](const std::string& word) {
    const auto named = extension::familyNamed(word);
    if (!named) throw CLI::ValidationError{"--family is small, medium or large, not '" + word + "'"};
    family = *named;
  };
  app.add_option_function<std::string>("--family", read, "small, medium (default) or large")
      ->type_name("FAMILY");
}

void addRequestFlags(CLI::App& app, extension::Request& request) {
  const auto add = [&](const char* flag, extension::Request value, const char* text) {
    return app.add_flag_callback(
        flag, [&request, value] { request = value; }, text);
  };
  auto* const placeholder = add("--placeholder", extension::Request::placeholder, "Ask for the placeholder");
  add("--preview", extension::Request::preview, "Ask for a gallery preview")->excludes(placeholder);
}

void addScaleOption(CLI::App& app, double& scale) {
  const auto check = [](const std::string& text) {
    double value = 0;
    const bool isNumber = CLI::detail::lexical_cast(text, value);
    return isNumber && std::isfinite(value) && value > 0 ? std::string{}
                                                         : "'" + text + "' is not a scale above 0";
  };
  app.add_option("--scale", scale, "Pixels a point")
      ->type_name("FACTOR")
      ->check(check)
      ->capture_default_str();
}

}  // namespace

int main(int argc, char** argv) {
  program::reserveStandardOutput();
  extension::useCatalogues();

  CLI::App app{"Draws and inspects the tiles of the status widget."};
  program::setExample(app, "tarno-widget render --family medium --scale 2 --output tile.png");
  app.require_subcommand(1);

  extension::RenderOptions rendering;
  auto& render = *app.add_subcommand("render", "Draw one tile into an image file");
  addFamilyOption(render, rendering.family);
  render.add_option("--output", rendering.output, "A .png, .svg or .pdf file; - is PNG on standard output")
      ->type_name("FILE")
      ->required();
  addScaleOption(render, rendering.scale);
  addRequestFlags(render, rendering.request);
  program::ClockOption renderClock{render};
  program::setExample(render, "tarno-widget render --family small --scale 2 --output tile.png");

  auto timelineFamily = widgetkit::WidgetFamily::systemMedium;
  auto& timeline = *app.add_subcommand("timeline", "Print a timeline's entries and reload date as JSON");
  addFamilyOption(timeline, timelineFamily);
  program::ClockOption timelineClock{timeline};
  program::setExample(timeline, "tarno-widget timeline --at 2026-11-16T15:45:00Z");

  extension::GalleryOptions browsing;
  auto& gallery = *app.add_subcommand("gallery", "Print what the widget says about itself");
  gallery.add_flag("--json", browsing.asJSON, "Print it as JSON");
  gallery.add_option("--output", browsing.output, "Also draw a preview of every family into this folder")
      ->type_name("DIR");
  addScaleOption(gallery, browsing.scale);
  program::ClockOption galleryClock{gallery};
  program::setExample(gallery, "tarno-widget gallery --output previews");

  extension::InspectOptions inspecting;
  auto& inspect =
      *app.add_subcommand("inspect", "Print the entry, the view tree, the scene and what is read aloud");
  addFamilyOption(inspect, inspecting.family);
  inspect.add_flag("--json", inspecting.asJSON, "Print it as JSON");
  addRequestFlags(inspect, inspecting.request);
  program::ClockOption inspectClock{inspect};
  program::setExample(inspect, "tarno-widget inspect --family small --json");

  return program::run(app, argc, argv, [&] {
    for (auto* const clock : {&renderClock, &timelineClock, &galleryClock, &inspectClock}) clock->apply();
    return extension::withWidget([&](const widgetkit::WidgetConfiguration& widget) {
      if (render.parsed()) return extension::render(widget, rendering);
      if (timeline.parsed()) return extension::timeline(widget, timelineFamily);
      if (gallery.parsed()) return extension::gallery(widget, browsing);
      return extension::inspect(widget, inspecting);
    });
  });
}
