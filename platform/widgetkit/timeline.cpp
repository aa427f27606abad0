#include "tarno/widgetkit/timeline.hpp"

namespace widgetkit {

std::string_view name(WidgetFamily family) {
  switch (family) {
    case WidgetFamily::systemSmall: return "systemSmall";
    case WidgetFamily::systemMedium: return "systemMedium";
    case WidgetFamily::systemLarge: return "systemLarge";
  }
  return {};
}

}  // namespace widgetkit
