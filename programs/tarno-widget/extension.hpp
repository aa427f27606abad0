#pragma once

#include <functional>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace extension {

/// Starts the widget extension in this process and calls `use` with its one widget; returns what `use`
/// returns. An exception of `use` passes through.
int withWidget(const std::function<int(const widgetkit::WidgetConfiguration&)>& use);

}  // namespace extension
