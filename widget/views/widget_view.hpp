#pragma once

#include <string>

#include "tarno/ui/view.hpp"
#include "tarno/widget/timeline/widget_entry.hpp"
#include "tarno/widgetkit/widget_configuration.hpp"

/// The tile of one entry: the dial alone when small; otherwise the dial beside the device's name, the status,
/// its detail and two pills, the age of the report and the presence signal.
struct TarnoMacWidgetView {
  const TarnoMacWidgetEntry entry;

  /// The tile for the family of the host's environment. Reads the clock for the age line, at every call.
  ui::View body(const widgetkit::EnvironmentValues& environment) const;

 private:
  ui::View compactView() const;
  ui::View expandedView() const;
  std::string ageLine() const;
  std::string presenceLine() const;
  static ui::View pill(std::string title, std::string systemImage, ui::Color tint);
};
