#include "wayland/show_desktop_watch.hpp"

namespace desktop::wayland {

ShowDesktopWatch::ShowDesktopWatch() {
  const auto changed = [](sd_bus_message* message, void* isShown, sd_bus_error*) {
    int value = 0;
    if (sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &value) > 0)
      *static_cast<bool*>(isShown) = value != 0;
    return 0;
  };
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) return;
  bus_.reset(bus);
  sd_bus_match_signal_async(bus, nullptr, "org.kde.KWin", "/KWin", "org.kde.KWin", "showingDesktopChanged",
                            changed, nullptr, &isShown_);
  isShown();  // sends that
}

bool ShowDesktopWatch::isShown() {
  int processed = 1;
  while (bus_ && processed > 0) processed = sd_bus_process(bus_.get(), nullptr);
  if (processed < 0) bus_.reset();  // the bus went away
  return bus_ && isShown_;
}

}  // namespace desktop::wayland
