#pragma once

#include <concepts>
#include <functional>
#include <tuple>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace widgetkit {

/// A type whose body() returns the configuration of a widget.
template <class T>
concept Widget = std::default_initializable<T> && requires(const T& widget) {
  widget.body().provider;
};

/// Returns the body of a bundle: its widgets, in this order.
template <Widget... Widgets>
std::tuple<Widgets...> buildBlock(const Widgets&... widgets) {
  return {widgets...};
}

/// The base class of an extension's main type `Bundle`, whose body() returns the widgets of the extension.
template <class Bundle>
struct WidgetBundle {
  /// A function that is called with the bundle and returns when it no longer needs the extension.
  using Host = std::function<void(const Bundle&)>;

  /// The host that is starting the extension, or null. It is global because the main function of an extension
  /// takes no arguments.
  static inline const Host* host = nullptr;

  /// Creates the bundle, passes it to the host, and returns when the host returns. Without a host (when the
  /// main function was called directly) it returns at once.
  static void main() {
    if (host != nullptr) (*host)(Bundle{});
  }
};

/// Starts an extension in this process: calls its main function, which passes its bundle to `host`. Returns
/// what the main function returns. Exceptions of `host` pass through. Only one extension at a time can run in
/// a process.
template <class Bundle>
int NSExtensionMain(int (*extensionMain)(), const typename WidgetBundle<Bundle>::Host& host) {
  struct Reset {
    ~Reset() { WidgetBundle<Bundle>::host = nullptr; }
  } const reset{};
  WidgetBundle<Bundle>::host = &host;
  return extensionMain();
}

}  // namespace widgetkit
