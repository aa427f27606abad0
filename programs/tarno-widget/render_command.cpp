#include "common/failure.hpp"
#include "common/files.hpp"
#include "common/output.hpp"
#include "render/image.hpp"
#include "tarno-widget/commands.hpp"
#include "tarno-widget/localization.hpp"
#include "tarno-widget/tile.hpp"

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

int render(const widgetkit::WidgetConfiguration& widget, const RenderOptions& options) {
  const auto format = formatOf(options.output);
  const auto entry = entryFor(widget, options.family, options.request);
  render::TextEngine text;
  std::string bytes;
  try {
    bytes = encodeImage(tileScene(entry, options.family, text), text, format, options.scale,
                        localized(widget.displayName));
  } catch (const render::ImageError& error) {
    throw program::Failure{EX_USAGE, error.what()};
  }
  if (options.output == "-") {
    program::writeOutput(bytes);
  } else {
    program::writeFile(options.output, bytes);
  }
  return EX_OK;
}

}  // namespace extension
