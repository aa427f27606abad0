#pragma once

#include <filesystem>
#include <optional>

#include "tarno-widget/requests.hpp"
#include "widgetkit/widget_configuration.hpp"

/// The commands of tarno-widget. Each returns the program's exit code and throws program::Failure.
namespace extension {

struct RenderOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  std::filesystem::path output;  ///< "-" is PNG on standard output
  double scale = 1;              ///< pixels a point
  Request request = Request::timeline;
};

/// Draws one tile into an image file, whole or not at all.
int render(const widgetkit::WidgetConfiguration& widget, const RenderOptions& options);

/// Prints the entries and the reload date of a timeline as JSON.
int timeline(const widgetkit::WidgetConfiguration& widget, widgetkit::WidgetFamily family);

struct GalleryOptions {
  bool asJSON = false;
  std::optional<std::filesystem::path> output;  ///< a folder for preview images, made where it is missing
  double scale = 2;
};

/// Prints what the widget says about itself, and draws a preview of every family.
int gallery(const widgetkit::WidgetConfiguration& widget, const GalleryOptions& options);

struct InspectOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  bool asJSON = false;
  Request request = Request::timeline;
};

/// Prints an entry, its view tree, the scene laid out and what a screen reader finds.
int inspect(const widgetkit::WidgetConfiguration& widget, const InspectOptions& options);

}  // namespace extension
