#include "tarno/widgetkit/widget_configuration.hpp"

namespace widgetkit {

WidgetConfiguration WidgetConfiguration::configurationDisplayName(LocalizedStringKey key) const {
  auto changed = *this;
  changed.displayName = std::move(key);
  return changed;
}

WidgetConfiguration WidgetConfiguration::description(LocalizedStringKey key) const {
  auto changed = *this;
  changed.widgetDescription = std::move(key);
  return changed;
}

WidgetConfiguration WidgetConfiguration::supportedFamilies(std::vector<WidgetFamily> supported) const {
  auto changed = *this;
  changed.families = std::move(supported);
  return changed;
}

}  // namespace widgetkit
