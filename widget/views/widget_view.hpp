#pragma once

#include <string>

#include "tarno/ui/view.hpp"
#include "tarno/widget/timeline/widget_entry.hpp"
#include "tarno/widgetkit/widget_configuration.hpp"

/// The tile of an entry. A small tile is the dial alone. The others also show, beside the dial, the name of
/// the Mac, the status, its detail, and two pills with the age of the report and the presence signal.
struct TarnoMacWidgetView {
  const TarnoMacWidgetEntry entry;

  /// Returns the tile for the family in the host's environment. Each call reads the clock for the age line.
  ui::View body(const widgetkit::EnvironmentValues& environment) const;

 private:
  ui::View compactView() const;
  ui::View expandedView() const;
  std::string ageLine() const;
  std::string presenceLine() const;
  static ui::View pill(std::string title, std::string systemImage, ui::Color tint);
};
