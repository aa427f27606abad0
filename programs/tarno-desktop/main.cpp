#include <cstdlib>

#include "common/command_line.hpp"
#include "common/dates.hpp"
#include "common/failure.hpp"
#include "common/output.hpp"
#include "tarno-desktop/desktop.hpp"
#include "tarno-desktop/diagnostics.hpp"
#include "tarno-widget/extension.hpp"
#include "tarno-widget/localization.hpp"

namespace {

/// The tile has no widgets: modules, virtual file systems, stored settings and themes would cost a third of
/// the start and of the memory for nothing. What the user has set for screen readers and scaling does not go
/// through these.
void leaveOutWhatATileDoesNotNeed() {
  unsetenv("GTK_MODULES");
  setenv("GIO_USE_VFS", "local", 1);
  setenv("GSETTINGS_BACKEND", "memory", 1);
  setenv("GTK_THEME", "TarnoBare", 1);
  setenv("GDK_GL", "disable", 1);
}

GdkDisplay* openDisplay() {
  leaveOutWhatATileDoesNotNeed();
  desktop::tameToolkitMessages();
  g_set_prgname("tarno-desktop");
  gtk_disable_setlocale();  // useCatalogues() has set what this program uses
  if (!gtk_init_check(nullptr, nullptr))
    throw program::Failure{EX_UNAVAILABLE, "no display: neither WAYLAND_DISPLAY nor DISPLAY leads to one"};
  GdkDisplay* display = gdk_display_get_default();
  desktop::reportLossOf(display);
  return display;
}

}  // namespace

int main(int argc, char** argv) {
  program::reserveStandardOutput();
  extension::useCatalogues();

  CLI::App app{"Shows the widget on the desktop: a live tile that keeps itself right."};
  program::setExample(app, "tarno-desktop --family small --anchor bottom-right --margin 24");
  desktop::Options options;
  desktop::addOptions(app, options);
  program::ClockOption clock{app};

  return program::run(app, argc, argv, [&] {
    clock.apply();
    GdkDisplay* display = openDisplay();
    if (options.listMonitors) {
      program::writeOutput(desktop::monitorList(desktop::monitors(display)));
      return EX_OK;
    }
    return extension::withWidget([&](const auto& widget) {
      return desktop::Desktop{options, widget, display}.run();
    });
  });
}
