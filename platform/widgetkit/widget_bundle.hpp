#pragma once

#include <concepts>
#include <functional>
#include <vector>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace widgetkit {

template <class T>
concept Widget = std::default_initializable<T> && requires(const T& widget) {
  { widget.body() } -> std::same_as<WidgetConfiguration>;
};

/// The configurations of an extension's widgets, in the order of its bundle.
using WidgetConfigurations = std::vector<WidgetConfiguration>;

/// What a bundle's body returns: its widgets, of whatever types.
template <Widget... Widgets>
WidgetConfigurations buildBlock(const Widgets&... widgets) {
  return {widgets.body()...};
}

template <class T>
concept WidgetBundle = std::default_initializable<T> && requires(const T& bundle) {
  { bundle.body() } -> std::same_as<WidgetConfigurations>;
};

/// What a host does with an extension, from its first request to its last.
using ExtensionHost = std::function<void(const WidgetConfigurations&)>;

/// Starts an extension in this process: runs its main function, whose bundle is handed to `host`. Returns
/// what the main function returns, after `host` has returned; an exception of `host` passes through. One
/// extension at a time in a process.
int NSExtensionMain(int (*extensionMain)(), const ExtensionHost& host);

/// Hands `widgets` to the host that started the extension and returns when it is done with them. Without a
/// host (an extension's main function called directly) it returns at once.
void serveHost(const WidgetConfigurations& widgets);

/// The main() of a widget bundle: makes the bundle and serves the host with its widgets.
template <WidgetBundle Bundle>
void bundleMain() {
  serveHost(Bundle{}.body());
}

}  // namespace widgetkit
