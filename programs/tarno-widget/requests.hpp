#pragma once

#include "widgetkit/widget_configuration.hpp"

namespace extension {

/// What a command asks the provider for.
enum class Request { timeline, placeholder, preview };

/// The entry that answers `request`; of a timeline, its first.
widgetkit::AnyTimelineEntry entryFor(const widgetkit::WidgetConfiguration& widget,
                                     widgetkit::WidgetFamily family, Request request);

}  // namespace extension
