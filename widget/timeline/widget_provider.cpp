#include "tarno/widget/timeline/widget_provider.hpp"

#include "tarno/shared/persistence/mac_defaults.hpp"

namespace {

constexpr tarno::TimeInterval reloadInterval{30.0};

}  // namespace

TarnoMacWidgetEntry TarnoMacWidgetProvider::placeholder(const widgetkit::TimelineProviderContext&) const {
  return TarnoMacWidgetEntry::placeholder();
}

void TarnoMacWidgetProvider::getSnapshot(const widgetkit::TimelineProviderContext& context,
                                         const std::function<void(Entry)>& completion) const {
  completion(context.isPreview ? TarnoMacWidgetEntry::placeholder() : readEntry(tarno::now()));
}

void TarnoMacWidgetProvider::getTimeline(
    const widgetkit::TimelineProviderContext&,
    const std::function<void(widgetkit::Timeline<Entry>)>& completion) const {
  auto entry = readEntry(tarno::now());
  // Counted after reading the store, so that a slow read does not shorten the interval.
  const auto reload = tarno::addingTimeInterval(tarno::now(), reloadInterval);
  completion({{std::move(entry)}, widgetkit::TimelineReloadPolicy::after(reload)});
}

TarnoMacWidgetEntry TarnoMacWidgetProvider::readEntry(tarno::Date now) {
  const auto loaded = TarnoMacDefaults::loadStatus(*TarnoMacDefaults::store(), now);
  if (!loaded) return {.date = now};
  return {.date = now, .status = loaded->snapshot, .lastRefresh = loaded->receivedAt};
}
