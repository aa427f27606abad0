#pragma once

#include <concepts>
#include <string>
#include <utility>
#include <vector>

#include "tarno/ui/view.hpp"
#include "tarno/widgetkit/timeline.hpp"

namespace widgetkit {

/// Values that the host provides to a view while the view is drawn.
struct EnvironmentValues {
  WidgetFamily widgetFamily = WidgetFamily::systemMedium;
};

/// The key of a text that a host may translate. Without a translation, the key itself is shown.
struct LocalizedStringKey {
  std::string key;
};

/// The view of an entry. Each drawing builds its body anew from the entry and the environment of the host.
/// The body may read the clock.
template <class T, class Entry>
concept EntryView = requires(const Entry& entry, const EnvironmentValues& environment) {
  { T{entry}.body(environment) } -> std::same_as<ui::View>;
};

/// The configuration of a widget without options for the user: its kind, the provider of its entries, the
/// view of an entry (`Content`), its texts and its sizes. Each modifier returns a changed copy.
template <TimelineProvider Provider, EntryView<typename Provider::Entry> Content>
struct StaticConfiguration {
  using Entry = typename Provider::Entry;

  std::string kind;
  Provider provider{};
  LocalizedStringKey displayName{}, widgetDescription{};
  std::vector<WidgetFamily> families{};

  StaticConfiguration configurationDisplayName(const LocalizedStringKey& key) const {
    auto changed = *this;
    changed.displayName = key;
    return changed;
  }
  StaticConfiguration description(const LocalizedStringKey& key) const {
    auto changed = *this;
    changed.widgetDescription = key;
    return changed;
  }
  StaticConfiguration supportedFamilies(const std::vector<WidgetFamily>& supported) const {
    auto changed = *this;
    changed.families = supported;
    return changed;
  }

  /// Returns the view of `entry` at this moment.
  ui::View content(const Entry& entry, const EnvironmentValues& environment) const {
    return Content{entry}.body(environment);
  }
};

/// Asks the provider of the widget for one entry, to show now or in a gallery.
template <class Provider, class Content>
typename Provider::Entry snapshot(const StaticConfiguration<Provider, Content>& widget,
                                  const TimelineProviderContext& context) {
  typename Provider::Entry answer;
  widget.provider.getSnapshot(context, [&](auto entry) { answer = std::move(entry); });
  return answer;
}

/// Asks the provider of the widget for a timeline: entries, and when to ask again.
template <class Provider, class Content>
Timeline<typename Provider::Entry> timeline(const StaticConfiguration<Provider, Content>& widget,
                                            const TimelineProviderContext& context) {
  Timeline<typename Provider::Entry> answer;
  widget.provider.getTimeline(context, [&](auto timeline) { answer = std::move(timeline); });
  return answer;
}

}  // namespace widgetkit
