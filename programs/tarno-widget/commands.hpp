#pragma once

#include <filesystem>
#include <optional>

#include "tarno/tarno-widget/tile.hpp"

/// The commands of tarno-widget. Each returns the exit code of the program and throws program::Failure.
namespace extension {

struct RenderOptions {
  TileOptions tile;
  std::filesystem::path output;  ///< a .png, .svg or .pdf file; "-" is PNG on standard output
  double scale = 1;  ///< pixels of a PNG, units of an SVG or points of a PDF per point of the tile
};

/// Draws one tile into an image file, atomically, for one reading of the clock.
int render(const Widget& widget, const RenderOptions& options);

struct FrameOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  double scale = 1;     ///< pixels per point
  int descriptor = -1;  ///< the shared memory to draw into
};

/// Requests a timeline, draws its first entry into shared memory, and prints one line of JSON that tells a
/// host how to show the tile and when to ask again (see docs/frame.md). If there is no picture, the line says
/// why.
int frame(const Widget& widget, const FrameOptions& options);

/// Prints the entries and the reload date of a timeline as JSON.
int timeline(const Widget& widget, widgetkit::WidgetFamily family);

struct InspectOptions {
  TileOptions tile;
  bool asJSON = false;
};

/// Prints an entry, its view tree, its scene and what a screen reader finds, all for one reading of the
/// clock.
int inspect(const Widget& widget, const InspectOptions& options);

struct GalleryOptions {
  bool asJSON = false;
  std::optional<std::filesystem::path> output;  ///< a folder for preview images; created if missing
  double scale = 2;                             ///< of the previews, in pixels per point
};

/// Prints the name, description and sizes of the widget and draws a preview of each size, all for one reading
/// of the clock.
int gallery(const Widget& widget, const GalleryOptions& options);

/// Prints the font in use. Returns EX_UNAVAILABLE if Quicksand is not installed.
int fonts();

}  // namespace extension
