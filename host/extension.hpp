#pragma once

#include <functional>

#include "widgetkit/widget_configuration.hpp"

namespace host {

/// Starts the widget extension in this process and calls `use` with its one widget; returns what `use`
/// returns. An exception of `use` passes through.
int withWidget(const std::function<int(const widgetkit::WidgetConfiguration&)>& use);

/// The text for a key in the user's language by gettext, domain "tarno", or the key itself. The program has
/// called setlocale().
std::string localized(const widgetkit::LocalizedStringKey& key);

}  // namespace host
