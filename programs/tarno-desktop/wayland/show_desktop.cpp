#include "tarno/wayland/show_desktop.hpp"

namespace desktop::wayland {

ShowDesktop::ShowDesktop() {
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) return;
  bus_.reset(bus);
  const auto changed = [](sd_bus_message* message, void* isShown, sd_bus_error*) {
    return sd_bus_message_read(message, "b", isShown);
  };
  sd_bus_match_signal_async(bus, nullptr, "org.kde.KWin", "/KWin", "org.kde.KWin", "showingDesktopChanged",
                            changed, nullptr, &isShown_);
}

bool ShowDesktop::isShown() {
  int processed = 1;
  while (bus_ && processed > 0) processed = sd_bus_process(bus_.get(), nullptr);
  if (processed < 0) bus_.reset();  // the bus has disappeared
  return bus_ && isShown_ != 0;
}

}  // namespace desktop::wayland
