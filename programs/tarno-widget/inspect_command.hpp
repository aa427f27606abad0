#pragma once

#include "tarno/tarno-widget/tile.hpp"

/// The commands that print what the widget answers and what it is drawn with. Each returns the program's exit
/// code and throws program::Failure.
namespace extension {

/// Prints the entries and the reload date of a timeline as JSON.
int timeline(const widgetkit::WidgetConfiguration& widget, widgetkit::WidgetFamily family);

struct InspectOptions {
  TileOptions tile;
  bool asJSON = false;
};

/// Prints an entry, its view tree, the scene laid out and what a screen reader finds, all for one reading of
/// the clock.
int inspect(const widgetkit::WidgetConfiguration& widget, const InspectOptions& options);

/// Prints one line: the face of the rounded design. Returns EX_UNAVAILABLE when that is not installed.
int fonts();

}  // namespace extension
