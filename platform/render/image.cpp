#include "tarno/render/image.hpp"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <new>
#include <vector>

#include "tarno/render/cairo_handle.hpp"
#include "tarno/render/display_text.hpp"
#include "tarno/render/painter.hpp"
#include "tarno/render/png.hpp"

namespace render {
namespace {

void requireSuccess(cairo_status_t status) {
  if (status == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
  if (status != CAIRO_STATUS_SUCCESS)
    throw std::runtime_error(std::string("cannot draw the image: ") + cairo_status_to_string(status));
}

void paintScaled(const ui::Scene& scene, TextEngine& text, double scale, cairo_surface_t* surface) {
  requireSuccess(cairo_surface_status(surface));
  const Context cairo(cairo_create(surface));
  cairo_scale(cairo.get(), scale, scale);
  paint(scene, text, cairo.get());
  requireSuccess(cairo_status(cairo.get()));
}

int pixels(double points, double scale) {
  const double side = std::max(std::ceil(points * scale - 1e-6), 1.0);
  if (!(side <= largestImageSide))
    throw ImageError("the image would be larger than " + std::to_string(largestImageSide) + " pixels");
  return static_cast<int>(side);
}

std::string png(const ui::Scene& scene, TextEngine& text, double scale) {
  const auto [width, height] = pixelSize(scene.size, scale);
  const std::size_t stride = static_cast<std::size_t>(width) * sizeof(std::uint32_t);
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  drawPixels(scene, text, scale, pixels.data(), stride);
  return encodePng(pixels.data(), {width, height}, 72 * scale);
}

cairo_status_t append(void* file, const unsigned char* data, unsigned int length) {
  try {
    static_cast<std::string*>(file)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

using CreateSurface = cairo_surface_t* (*)(cairo_write_func_t, void*, double width, double height);

/// Returns a file that shows `scene` on a surface from `create`, which `prepare` may change before the
/// drawing.
template <class Prepare>
std::string vectorFile(const ui::Scene& scene, TextEngine& text, double scale, CreateSurface create,
                       const Prepare& prepare) {
  pixelSize(scene.size, scale);  // throws if it is too large
  std::string file;
  const Surface surface(create(append, &file, scene.size.width * scale, scene.size.height * scale));
  requireSuccess(cairo_surface_status(surface.get()));
  prepare(surface.get());
  paintScaled(scene, text, scale, surface.get());
  cairo_surface_finish(surface.get());
  requireSuccess(cairo_surface_status(surface.get()));
  return file;
}

/// Numbers the parts of an SVG anew, so that the same scene always gives the same bytes. (Cairo counts the
/// surfaces of the whole process.) No text can contain such a name, because Cairo writes texts as shapes.
std::string withOwnSurfaceNames(const std::string& svg) {
  static constexpr std::string_view prefix = "surface";
  std::string result;
  std::map<std::string, std::size_t> numbers;
  std::size_t copied = 0;
  for (auto at = svg.find(prefix); at != std::string::npos; at = svg.find(prefix, copied)) {
    const auto digits = at + prefix.size();
    const auto end = std::min(svg.find_first_not_of("0123456789", digits), svg.size());
    result.append(svg, copied, digits - copied);
    if (end > digits)
      result +=
          std::to_string(numbers.try_emplace(svg.substr(digits, end - digits), numbers.size()).first->second);
    copied = end;
  }
  return result.append(svg, copied);
}

/// The texts of an image for screen readers.
struct Words {
  std::string title;
  std::string description;

  Words(const ui::Scene& scene, std::string_view imageTitle) : title(displayText(imageTitle, true).text) {
    std::string labels;
    for (const ui::AccessibilityElement& element : scene.accessibility)
      labels += (labels.empty() ? "" : ", ") + element.label;
    description = displayText(labels, true).text;
  }
};

std::string xmlElement(const std::string& name, const std::string& text) {
  if (text.empty()) return {};
  const tarno::Handle<char, g_free> escaped(
      g_markup_escape_text(text.data(), static_cast<gssize>(text.size())));
  return "<" + name + ">" + escaped.get() + "</" + name + ">\n";
}

std::string svg(const ui::Scene& scene, TextEngine& text, double scale, const Words& words) {
  const auto prepare = [](cairo_surface_t* surface) {
    cairo_svg_surface_set_document_unit(surface, CAIRO_SVG_UNIT_USER);
  };
  std::string file =
      withOwnSurfaceNames(vectorFile(scene, text, scale, cairo_svg_surface_create_for_stream, prepare));
  const std::size_t endOfTag = file.find('>', file.find("<svg "));
  const std::string elements = xmlElement("title", words.title) + xmlElement("desc", words.description);
  return file.replace(endOfTag, 2, " role=\"img\">\n" + elements);
}

std::string pdf(const ui::Scene& scene, TextEngine& text, double scale, const Words& words) {
  return vectorFile(scene, text, scale, cairo_pdf_surface_create_for_stream, [&](cairo_surface_t* surface) {
    // PDF 1.5 is the first version in which glyphs can refer to the text that they stand for. Cairo writes
    // that text where characters and glyphs do not correspond one to one (Devanagari). The file has no tags
    // for screen readers, because those of Cairo 1.16 have no labels and do not mark the file as tagged.
    cairo_pdf_surface_restrict_to_version(surface, CAIRO_PDF_VERSION_1_5);
    // The default would be the current time.
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATE_DATE, "");
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_TITLE, words.title.c_str());
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_SUBJECT, words.description.c_str());
  });
}

}  // namespace

PixelSize pixelSize(ui::Size points, double scale) {
  return {pixels(points.width, scale), pixels(points.height, scale)};
}

void drawPixels(const ui::Scene& scene, TextEngine& text, double scale, std::uint32_t* pixels,
                std::size_t strideBytes) {
  const auto [width, height] = pixelSize(scene.size, scale);
  const Surface surface(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels),
                                                            CAIRO_FORMAT_ARGB32, width, height,
                                                            static_cast<int>(strideBytes)));
  paintScaled(scene, text, scale, surface.get());
  cairo_surface_flush(surface.get());
}

std::string encodeImage(const ui::Scene& scene, TextEngine& text, ImageFormat format, double scale,
                        std::string_view title) {
  switch (format) {
    case ImageFormat::png: return png(scene, text, scale);
    case ImageFormat::svg: return svg(scene, text, scale, Words(scene, title));
    case ImageFormat::pdf: return pdf(scene, text, scale, Words(scene, title));
  }
  throw std::logic_error("unknown image format");
}

}  // namespace render
