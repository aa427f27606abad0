#pragma once

#include <filesystem>

#include "tarno/tarno-widget/tile.hpp"

namespace extension {

struct RenderOptions {
  TileOptions tile;
  std::filesystem::path output;  ///< a .png, .svg or .pdf file; "-" is PNG on standard output
  double scale = 1;              ///< pixels of a PNG, units of an SVG, points of a PDF per point of the tile
};

/// Draws one tile, for one reading of the clock, into an image file, whole or not at all. Returns the
/// program's exit code; throws program::Failure.
int render(const widgetkit::WidgetConfiguration& widget, const RenderOptions& options);

}  // namespace extension
