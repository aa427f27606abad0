#pragma once

#include <filesystem>
#include <optional>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace extension {

struct GalleryOptions {
  bool asJSON = false;
  std::optional<std::filesystem::path> output;  ///< a folder for preview images, made where it is missing
  double scale = 2;                             ///< of the previews, in pixels per point
};

/// Prints what the widget says about itself, and draws a preview of every family, all for one reading of the
/// clock. Returns the program's exit code; throws program::Failure.
int gallery(const widgetkit::WidgetConfiguration& widget, const GalleryOptions& options);

}  // namespace extension
