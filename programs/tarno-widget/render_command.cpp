#include "tarno/common/files.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/date.hpp"
#include "tarno/tarno-widget/commands.hpp"
#include "tarno/tarno-widget/drawing.hpp"
#include "tarno/tarno-widget/localization.hpp"

namespace extension {
namespace {

render::ImageFormat formatOf(const std::filesystem::path& output) {
  const auto suffix = output.extension();
  if (output == "-" || suffix == ".png") return render::ImageFormat::png;
  if (suffix == ".svg") return render::ImageFormat::svg;
  if (suffix == ".pdf") return render::ImageFormat::pdf;
  throw program::Failure{EX_USAGE, "cannot tell the image format of " + output.string() +
                                       ": the name must end in .png, .svg or .pdf"};
}

}  // namespace

int render(const Widget& widget, const RenderOptions& options) {
  const auto format = formatOf(options.output);
  const tarno::ClockOverride oneReading{tarno::now()};
  const auto family = options.tile.family;
  const auto entry = entryFor(widget, options.tile);
  render::TextEngine text;
  const auto bytes = drawn([&] {
    const auto scene = tileScene(widget.content(entry, {.widgetFamily = family}), family, text);
    return encodeImage(scene, text, format, options.scale, localized(widget.displayName));
  });
  if (options.output == "-") {
    program::writeOutput(bytes);
  } else {
    program::writeFile(options.output, bytes);
  }
  return EX_OK;
}

}  // namespace extension
