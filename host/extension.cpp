#include "host/extension.hpp"

#include <libintl.h>

#include "widget/extension/status_widget.hpp"

namespace host {

int withWidget(const std::function<int(const widgetkit::WidgetConfiguration&)>& use) {
  int result = 0;
  widgetkit::NSExtensionMain(TarnoMacWidget_main, [&](const widgetkit::WidgetConfigurations& widgets) {
    result = use(widgets.front());
  });
  return result;
}

std::string localized(const widgetkit::LocalizedStringKey& key) {
  if (key.key.empty()) return {};  // gettext keeps the catalogue's header under the empty key
  return dgettext("tarno", key.key.c_str());
}

}  // namespace host
