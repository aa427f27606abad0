#pragma once

#include <any>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ui/view.hpp"
#include "widgetkit/timeline.hpp"

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

/// An entry whose type the host need not know: when it is for, and what it looks like.
struct AnyTimelineEntry {
  foundation::Date date;
  std::any value;  ///< the provider's own entry

  /// Builds the view anew, as often as the entry is drawn; the view may read the clock.
  std::function<ui::View(const EnvironmentValues&)> content;
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
    provider_.getSnapshot(context, [&](Entry entry) { result = wrap(std::move(entry)); });
    return result;
  }

  AnyTimeline timeline(const TimelineProviderContext& context) const override {
    AnyTimeline result{{}, TimelineReloadPolicy::after({})};
    provider_.getTimeline(context, [&](Timeline<Entry> timeline) {
      result.policy = timeline.policy;
      for (auto& entry : timeline.entries) result.entries.push_back(wrap(std::move(entry)));
    });
    return result;
  }

 private:
  using Entry = typename Provider::Entry;

  AnyTimelineEntry wrap(Entry entry) const {
    const foundation::Date date = entry.date;
    return {date, entry, [content = content_, entry](const EnvironmentValues& environment) {
              return content(entry, environment);
            }};
  }

  Provider provider_;
  Content content_;
};

/// A configuration that the user cannot edit. `content(entry, environment)` is the view of an entry.
template <TimelineProvider Provider, class Content>
WidgetConfiguration StaticConfiguration(const std::string& kind, Provider provider, Content content) {
  return {.kind = kind,
          .provider = std::make_shared<const StaticTimelineProvider<Provider, Content>>(std::move(provider),
                                                                                        std::move(content))};
}

}  // namespace widgetkit
