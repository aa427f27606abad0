#pragma once

#include <functional>

#include "tarno/widget/timeline/widget_entry.hpp"
#include "tarno/widgetkit/timeline.hpp"

/// Answers the requests of the host from the last report in the shared store. Keeps no state; every timeline
/// and every snapshot that is not a preview reads the store once. Calls completions before it returns.
struct TarnoMacWidgetProvider {
  using Entry = TarnoMacWidgetEntry;

  Entry placeholder(const widgetkit::TimelineProviderContext& context) const;

  /// Returns the placeholder for a preview, otherwise the current entry.
  void getSnapshot(const widgetkit::TimelineProviderContext& context,
                   const std::function<void(Entry)>& completion) const;

  /// Returns one entry and a reload date 30 seconds later.
  void getTimeline(const widgetkit::TimelineProviderContext& context,
                   const std::function<void(widgetkit::Timeline<Entry>)>& completion) const;

 private:
  static Entry readEntry(tarno::Date now);
};
