#pragma once

#include <filesystem>
#include <optional>

#include "tarno/tarno-widget/tile.hpp"

/// The commands of tarno-widget. Each returns the program's exit code and throws program::Failure.
namespace extension {

struct RenderOptions {
  TileOptions tile;
  std::filesystem::path output;  ///< a .png, .svg or .pdf file; "-" is PNG on standard output
  double scale = 1;              ///< pixels of a PNG, units of an SVG, points of a PDF per point of the tile
};

/// Draws one tile, for one reading of the clock, into an image file, whole or not at all.
int render(const Widget& widget, const RenderOptions& options);

struct FrameOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  double scale = 1;     ///< pixels per point
  int descriptor = -1;  ///< of the shared memory to draw into
};

/// Asks for a timeline, draws its entry into shared memory and prints one line of JSON that tells a host
/// what it needs to show the tile and when to ask again; docs/frame.md describes both. When there is no
/// picture, the line says why.
int frame(const Widget& widget, const FrameOptions& options);

/// Prints the entries and the reload date of a timeline as JSON.
int timeline(const Widget& widget, widgetkit::WidgetFamily family);

struct InspectOptions {
  TileOptions tile;
  bool asJSON = false;
};

/// Prints an entry, its view tree, the scene laid out and what a screen reader finds, all for one reading of
/// the clock.
int inspect(const Widget& widget, const InspectOptions& options);

struct GalleryOptions {
  bool asJSON = false;
  std::optional<std::filesystem::path> output;  ///< a folder for preview images, made where it is missing
  double scale = 2;                             ///< of the previews, in pixels per point
};

/// Prints what the widget says about itself, and draws a preview of every family, all for one reading of the
/// clock.
int gallery(const Widget& widget, const GalleryOptions& options);

/// Prints one line: the face of the rounded design. Returns EX_UNAVAILABLE when that is not installed.
int fonts();

}  // namespace extension
