#include "tarno/widgetkit/widget_bundle.hpp"

namespace widgetkit {
namespace {

const ExtensionHost* currentHost = nullptr;

struct HostScope {
  explicit HostScope(const ExtensionHost& host) { currentHost = &host; }
  ~HostScope() { currentHost = nullptr; }
  HostScope(const HostScope&) = delete;
  HostScope& operator=(const HostScope&) = delete;
};

}  // namespace

int NSExtensionMain(int (*extensionMain)(), const ExtensionHost& host) {
  const HostScope scope{host};
  return extensionMain();
}

void serveHost(const WidgetConfigurations& widgets) {
  if (currentHost != nullptr) (*currentHost)(widgets);
}

}  // namespace widgetkit
