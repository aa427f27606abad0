#pragma once

#include <functional>

#include "tarno/widget/timeline/widget_entry.hpp"
#include "tarno/widgetkit/timeline.hpp"

/// Answers the host's requests from the last report in the shared store. Keeps nothing between requests;
/// every timeline and every snapshot that is not a preview reads the store once. Completions are called
/// before the call returns.
struct TarnoMacWidgetProvider {
  using Entry = TarnoMacWidgetEntry;

  Entry placeholder(const widgetkit::TimelineProviderContext& context) const;

  /// The placeholder for a preview, else the entry of this moment.
  void getSnapshot(const widgetkit::TimelineProviderContext& context,
                   const std::function<void(Entry)>& completion) const;

  /// One entry, to be asked for anew 30 seconds later.
  void getTimeline(const widgetkit::TimelineProviderContext& context,
                   const std::function<void(widgetkit::Timeline<Entry>)>& completion) const;

 private:
  static Entry readEntry(tarno::Date now);
};
