#include "tarno-widget/requests.hpp"

#include "tarno-widget/tile.hpp"

namespace extension {

widgetkit::AnyTimelineEntry entryFor(const widgetkit::WidgetConfiguration& widget,
                                     widgetkit::WidgetFamily family, Request request) {
  switch (request) {
    case Request::placeholder: return widget.provider->placeholder(requestContext(family));
    case Request::preview: return widget.provider->snapshot(requestContext(family, true));
    case Request::timeline: break;
  }
  return widget.provider->timeline(requestContext(family)).entries.front();
}

}  // namespace extension
