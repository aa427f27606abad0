#include "commands.hpp"
#include "host/tile.hpp"
#include "program/failure.hpp"
#include "program/files.hpp"
#include "program/output.hpp"
#include "render/image.hpp"

namespace images {
namespace {

render::ImageFormat formatOf(const std::filesystem::path& output) {
  const auto extension = output.extension();
  if (output == "-" || extension == ".png") return render::ImageFormat::png;
  if (extension == ".svg") return render::ImageFormat::svg;
  if (extension == ".pdf") return render::ImageFormat::pdf;
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
    bytes = encodeImage(host::tileScene(entry, options.family, text), text, format, options.scale);
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

}  // namespace images
