#pragma once

#include <any>
#include <concepts>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tarno/ui/view.hpp"
#include "tarno/widgetkit/timeline.hpp"

namespace widgetkit {

/// What the host installs for a view to look up while it is drawn.
struct EnvironmentValues {
  WidgetFamily widgetFamily = WidgetFamily::systemMedium;
};

/// The key of a text that a host may have in the user's language; shown itself where there is none.
struct LocalizedStringKey {
  std::string key;

  friend bool operator==(const LocalizedStringKey&, const LocalizedStringKey&) = default;
};

/// What an entry looks like. It is made from the entry alone; its body is built anew, in the environment of
/// the host, each time the entry is drawn, and may read the clock.
template <class T>
concept EntryView = std::copy_constructible<T> &&
    requires(const T& view, const EnvironmentValues& environment) {
  { view.body(environment) } -> std::same_as<ui::View>;
};

/// An entry and its view, of types that the host need not know.
struct AnyTimelineEntry {
  tarno::Date date;
  std::any value;                                             ///< the provider's own entry
  std::function<ui::View(const EnvironmentValues&)> content;  ///< the body of its view

  template <TimelineEntry Entry, EntryView View>
  static AnyTimelineEntry of(const Entry& entry, const View& view) {
    return {entry.date, entry,
            [view](const EnvironmentValues& environment) { return view.body(environment); }};
  }
};

struct AnyTimeline {
  std::vector<AnyTimelineEntry> entries;
  TimelineReloadPolicy policy;
};

/// A provider and a content rule, without their types. Immutable.
class AnyTimelineProvider {
 public:
  virtual ~AnyTimelineProvider() = default;
  virtual AnyTimelineEntry placeholder(const TimelineProviderContext& context) const = 0;
  virtual AnyTimelineEntry snapshot(const TimelineProviderContext& context) const = 0;
  virtual AnyTimeline timeline(const TimelineProviderContext& context) const = 0;
};

/// What a widget tells the host about itself. Made by StaticConfiguration, extended by the modifiers.
struct WidgetConfiguration {
  std::string kind;
  std::shared_ptr<const AnyTimelineProvider> provider;
  LocalizedStringKey displayName;
  LocalizedStringKey widgetDescription;
  std::vector<WidgetFamily> families;

  WidgetConfiguration configurationDisplayName(LocalizedStringKey key) const;
  WidgetConfiguration description(LocalizedStringKey key) const;
  WidgetConfiguration supportedFamilies(std::vector<WidgetFamily> supported) const;
};

/// Ties a provider to a content rule.
template <TimelineProvider Provider, class Content>
class StaticTimelineProvider final : public AnyTimelineProvider {
 public:
  StaticTimelineProvider(Provider provider, Content content)
      : provider_(std::move(provider)), content_(std::move(content)) {}

  AnyTimelineEntry placeholder(const TimelineProviderContext& context) const override {
    return wrap(provider_.placeholder(context));
  }

  AnyTimelineEntry snapshot(const TimelineProviderContext& context) const override {
    AnyTimelineEntry result;
    provider_.getSnapshot(context, [&](const Entry& entry) { result = wrap(entry); });
    return result;
  }

  AnyTimeline timeline(const TimelineProviderContext& context) const override {
    AnyTimeline result{{}, TimelineReloadPolicy::after({})};
    provider_.getTimeline(context, [&](const Timeline<Entry>& timeline) {
      result.policy = timeline.policy;
      for (const Entry& entry : timeline.entries) result.entries.push_back(wrap(entry));
    });
    return result;
  }

 private:
  using Entry = typename Provider::Entry;

  AnyTimelineEntry wrap(const Entry& entry) const { return AnyTimelineEntry::of(entry, content_(entry)); }

  Provider provider_;
  Content content_;
};

/// A configuration that the user cannot edit. `content(entry)` is the view of an entry.
template <TimelineProvider Provider, class Content>
WidgetConfiguration StaticConfiguration(const std::string& kind, Provider provider, Content content) {
  return {.kind = kind,
          .provider = std::make_shared<const StaticTimelineProvider<Provider, Content>>(std::move(provider),
                                                                                        std::move(content))};
}

}  // namespace widgetkit
