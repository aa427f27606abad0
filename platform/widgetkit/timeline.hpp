#pragma once

#include <array>
#include <concepts>
#include <functional>
#include <string_view>
#include <vector>

#include "tarno/foundation/date.hpp"
#include "tarno/ui/geometry.hpp"

namespace widgetkit {

enum class WidgetFamily { systemSmall, systemMedium, systemLarge };

/// The name that a family goes by in code.
constexpr std::string_view name(WidgetFamily family) {
  constexpr std::array<std::string_view, 3> names{"systemSmall", "systemMedium", "systemLarge"};
  return names[static_cast<std::size_t>(family)];
}

/// What a host tells a provider about a request.
struct TimelineProviderContext {
  WidgetFamily family = WidgetFamily::systemMedium;
  bool isPreview = false;  ///< the entry is for a gallery, not for the desktop
  ui::Size displaySize;    ///< of the tile, in points
};

/// When the host is to ask for the next timeline.
class TimelineReloadPolicy {
 public:
  static TimelineReloadPolicy after(tarno::Date date) { return TimelineReloadPolicy{date}; }

  tarno::Date date() const { return date_; }

  friend bool operator==(const TimelineReloadPolicy&, const TimelineReloadPolicy&) = default;

 private:
  explicit TimelineReloadPolicy(tarno::Date date) : date_(date) {}

  tarno::Date date_;
};

template <class T>
concept TimelineEntry = std::copyable<T> && requires(const T& entry) {
  { entry.date } -> std::convertible_to<tarno::Date>;
};

template <TimelineEntry Entry>
struct Timeline {
  std::vector<Entry> entries;
  TimelineReloadPolicy policy;
};

/// What answers a host's requests. A completion is called exactly once, on the caller's thread, before the
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
