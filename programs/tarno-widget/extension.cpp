#include "tarno/tarno-widget/extension.hpp"

#include "tarno/widget/extension/status_widget.hpp"

namespace extension {

int withWidget(const std::function<int(const widgetkit::WidgetConfiguration&)>& use) {
  int result = 0;
  widgetkit::NSExtensionMain(TarnoMacWidget_main, [&](const widgetkit::WidgetConfigurations& widgets) {
    result = use(widgets.front());
  });
  return result;
}

}  // namespace extension
