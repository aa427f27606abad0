#include "requests.hpp"

#include "host/tile.hpp"

namespace images {

widgetkit::AnyTimelineEntry entryFor(const widgetkit::WidgetConfiguration& widget,
                                     widgetkit::WidgetFamily family, Request request) {
  switch (request) {
    case Request::placeholder: return widget.provider->placeholder(host::requestContext(family));
    case Request::preview: return widget.provider->snapshot(host::requestContext(family, true));
    case Request::timeline: break;
  }
  return widget.provider->timeline(host::requestContext(family)).entries.front();
}

}  // namespace images
