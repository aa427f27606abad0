#pragma once

#include <concepts>
#include <functional>
#include <tuple>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace widgetkit {

/// A type whose body() is the configuration of a widget.
template <class T>
concept Widget = std::default_initializable<T> && requires(const T& widget) {
  widget.body().provider;
};

/// What a bundle's body returns: its widgets, in this order.
template <Widget... Widgets>
std::tuple<Widgets...> buildBlock(const Widgets&... widgets) {
  return {widgets...};
}

/// The base of an extension's main type, which is `Bundle`; its body() returns the extension's widgets.
template <class Bundle>
struct WidgetBundle {
  /// What a host does with the extension, from its first request to its last.
  using Host = std::function<void(const Bundle&)>;

  /// The host that is starting the extension; null when none is. An extension's main function takes no
  /// arguments, so that main() has to find its host here.
  static inline const Host* host = nullptr;

  /// Makes the bundle, hands it to the host and returns when the host is done with it. Without a host (the
  /// extension's main function was called directly) it returns at once.
  static void main() {
    if (host != nullptr) (*host)(Bundle{});
  }
};

/// Starts an extension in this process: runs its main function, which hands its bundle to `host`. Returns
/// what the main function returns, after `host` has returned; an exception of `host` passes through. One
/// extension at a time in a process.
template <class Bundle>
int NSExtensionMain(int (*extensionMain)(), const typename WidgetBundle<Bundle>::Host& host) {
  struct Reset {
    ~Reset() { WidgetBundle<Bundle>::host = nullptr; }
  } const reset{};
  WidgetBundle<Bundle>::host = &host;
  return extensionMain();
}

}  // namespace widgetkit
