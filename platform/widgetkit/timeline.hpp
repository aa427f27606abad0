#pragma once

#include <concepts>
#include <functional>
#include <string_view>
#include <vector>

#include "tarno/foundation/date.hpp"

namespace widgetkit {

enum class WidgetFamily { systemSmall, systemMedium, systemLarge };

/// Returns the name of a family as it is written in code.
std::string_view name(WidgetFamily family);

/// The context that a host passes to a provider with a request.
struct TimelineProviderContext {
  WidgetFamily family = WidgetFamily::systemMedium;
  bool isPreview = false;  ///< the entry is for a gallery, not for the desktop
};

/// Tells the host when to ask for the next timeline.
struct TimelineReloadPolicy {
  tarno::Date date;

  static TimelineReloadPolicy after(tarno::Date date) { return {date}; }
};

template <class T>
concept TimelineEntry = std::copyable<T> && std::default_initializable<T> && requires(const T& entry) {
  { entry.date } -> std::convertible_to<tarno::Date>;
};

template <TimelineEntry Entry>
struct Timeline {
  std::vector<Entry> entries;
  TimelineReloadPolicy policy;
};

/// Answers the requests of a host. A completion is called exactly once, on the caller's thread, before the
/// operation returns.
template <class T>
concept TimelineProvider = TimelineEntry<typename T::Entry> &&
    requires(const T& provider, const TimelineProviderContext& context,
             const std::function<void(typename T::Entry)>& takeEntry,
             const std::function<void(Timeline<typename T::Entry>)>& takeTimeline) {
  { provider.placeholder(context) } -> std::same_as<typename T::Entry>;
  provider.getSnapshot(context, takeEntry);
  provider.getTimeline(context, takeTimeline);
};

}  // namespace widgetkit
