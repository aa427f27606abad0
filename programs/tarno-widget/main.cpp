#include <filesystem>

#include "tarno/common/command_line.hpp"
#include "tarno/common/dates.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/base_directories.hpp"
#include "tarno/tarno-widget/commands.hpp"
#include "tarno/tarno-widget/confinement.hpp"
#include "tarno/tarno-widget/localization.hpp"

namespace {

CLI::App& addCommand(CLI::App& app, const char* name, const char* description, const char* example) {
  auto& command = *app.add_subcommand(name, description);
  program::setExample(command, example);
  return command;
}

void addFamilyOption(CLI::App& command, widgetkit::WidgetFamily& family) {
  const auto use = [&family](const std::string& word) { family = *extension::familyNamed(word); };
  command.add_option_function<std::string>("--family", use, "Size of the tile")
      ->check(program::oneOf({"small", "medium", "large"}))
      ->type_name("WORD")
      ->default_str("medium");
}

void addTileOptions(CLI::App& command, extension::TileOptions& tile) {
  addFamilyOption(command, tile.family);
  const auto add = [&](const char* flag, extension::Request request, const char* text) {
    return command.add_flag_callback(
        flag, [&tile, request] { tile.request = request; }, text);
  };
  auto* const placeholder = add("--placeholder", extension::Request::placeholder,
                                "Show the placeholder instead of the last status");
  add("--preview", extension::Request::preview, "Show the gallery preview instead of the last status")
      ->excludes(placeholder);
}

void addScaleOption(CLI::App& command, double& scale) {
  // Below this range, drawing cannot tell a scale from 0. Above it, images exceed the maximum size.
  command.add_option("--scale", scale, "Pixels per point, a number from 0.01 to 96")
      ->type_name("FACTOR")
      ->check(program::numberFrom(0.01, 96))
      ->capture_default_str();
}

/// Creates the folder of fontconfig's cache. Fontconfig prints an error if there is none and it cannot create
/// one.
[[maybe_unused]] void makeFontCacheFolder() {
  std::error_code ignored;
  if (const auto cache = tarno::cacheHome())
    std::filesystem::create_directories(*cache / "fontconfig", ignored);
}

}  // namespace

int main(int argc, char** argv) {
  program::reserveStandardOutput();
  extension::useCatalogues();

  CLI::App app{"Draws the tiles of the status widget and shows how they are made."};
  program::setExample(app, "tarno-widget render --family medium --scale 2 --output tile.png");
  app.require_subcommand(1);

  extension::RenderOptions rendering;
  auto& render = addCommand(app, "render", "Draw a tile into an image file",
                            "tarno-widget render --family small --scale 2 --output tile.png");
  addTileOptions(render, rendering.tile);
  addScaleOption(render, rendering.scale);
  render
      .add_option("--output", rendering.output,
                  "Image file: a .png, .svg or .pdf file, or - for a PNG on standard output")
      ->type_name("FILE")
      ->required();

  extension::FrameOptions framing;
  auto& frame = addCommand(app, "frame", "Draw a tile into shared memory, for a program that shows it",
                           "tarno-widget frame --family medium --scale 1.5 --fd 3");
  addFamilyOption(frame, framing.family);
  addScaleOption(frame, framing.scale);
  frame
      .add_option("--fd", framing.descriptor,
                  "Number of an inherited descriptor of a memfd that allows sealing")
      ->type_name("NUMBER")
      ->required();

  auto timelineFamily = widgetkit::WidgetFamily::systemMedium;
  auto& timeline =
      addCommand(app, "timeline", "Print the entries of the timeline and the reload date as JSON",
                 "tarno-widget timeline --at 2026-11-16T15:45:00Z");
  addFamilyOption(timeline, timelineFamily);

  extension::InspectOptions inspecting;
  auto& inspect =
      addCommand(app, "inspect", "Print the entry, the view tree, the scene and what screen readers find",
                 "tarno-widget inspect --family small --json");
  addTileOptions(inspect, inspecting.tile);
  inspect.add_flag("--json", inspecting.asJSON, "Print JSON");

  extension::GalleryOptions browsing;
  auto& gallery = addCommand(app, "gallery", "Print the widget's name, description and sizes",
                             "tarno-widget gallery --output previews");
  gallery.add_flag("--json", browsing.asJSON, "Print JSON");
  gallery.add_option("--output", browsing.output, "Also draw a preview of each size into this folder")
      ->type_name("FOLDER");
  addScaleOption(gallery, browsing.scale);

  auto& fonts = addCommand(app, "fonts", "Print the font in use, and whether Quicksand is missing",
                           "tarno-widget fonts");

  program::ClockOption clock{&render, &frame, &timeline, &inspect, &gallery};
  return program::run(app, argc, argv, [&] {
    clock.apply();
    if (fonts.parsed()) return extension::fonts();
#ifndef TARNO_SANITIZED  // sanitizers inspect other processes at the end, which the confinement denies
    makeFontCacheFolder();
    const bool writesFiles = render.parsed() || browsing.output;
    extension::confine(writesFiles ? extension::FileAccess::readWrite : extension::FileAccess::readOnly);
#endif
    const auto serve = [&](const extension::Widget& widget) {
      if (render.parsed()) return extension::render(widget, rendering);
      if (frame.parsed()) return extension::frame(widget, framing);
      if (timeline.parsed()) return extension::timeline(widget, timelineFamily);
      if (inspect.parsed()) return extension::inspect(widget, inspecting);
      return extension::gallery(widget, browsing);
    };
    int exitCode = EX_OK;
    widgetkit::NSExtensionMain<TarnoMacWidgetBundle>(TarnoMacWidget_main, [&](const auto& bundle) {
      const auto [widget] = bundle.body();
      exitCode = serve(widget.body());
    });
    return exitCode;
  });
}
