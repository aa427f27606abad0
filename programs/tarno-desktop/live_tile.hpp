#pragma once

#include <optional>

#include "render/text_engine.hpp"
#include "ui/scene.hpp"
#include "widgetkit/widget_configuration.hpp"

namespace desktop {

/// A widget's tile that follows its timeline: the entry that was answered last, and what it looks like now. A
/// request or a drawing that fails is said on standard error, once as long as it goes on, and leaves the tile
/// as it was. One thread.
class LiveTile {
 public:
  LiveTile(widgetkit::WidgetConfiguration configuration, widgetkit::WidgetFamily family);

  ui::Size size() const;

  /// Asks the provider for a timeline. Nothing when that failed.
  std::optional<widgetkit::TimelineReloadPolicy> ask();

  /// Lays the entry out anew: the view reads the clock again. Returns whether it looks different from before.
  bool refresh();

  /// As it was laid out last; empty before the first refresh().
  const ui::Scene& scene() const { return scene_; }

  /// Draws scene() at `scale` pixels a point on an image of its own and copies that over what `cairo` has,
  /// pixel by pixel. `isOpaque` makes every pixel that is not empty opaque, in its own colour.
  void paint(cairo_t* cairo, int scale, bool isOpaque);

 private:
  bool failed(const char* what, const std::string& reason);

  const widgetkit::WidgetConfiguration configuration_;
  const widgetkit::WidgetFamily family_;
  std::optional<widgetkit::AnyTimelineEntry> entry_;
  render::TextEngine text_;
  ui::Scene scene_;
  std::string lastFailure_;
};

}  // namespace desktop
