#include "tarno-desktop/diagnostics.hpp"

#include <glib.h>
#include <sysexits.h>
#include <unistd.h>

#include <string_view>

#include "common/command_line.hpp"

// After CLI11: Xlib's headers define common words as macros.
#include <gdk/gdkx.h>

namespace desktop {
namespace {

/// Going through exit() instead would run into the display that is gone.
[[noreturn]] void displayLost() {
  program::complain("the display went away");
  _exit(EX_UNAVAILABLE);
}

std::string_view field(const GLogField* fields, gsize count, std::string_view key) {
  for (gsize i = 0; i < count; ++i) {
    if (fields[i].key != key || fields[i].length >= 0) continue;
    return static_cast<const char*>(fields[i].value);
  }
  return {};
}

GLogWriterOutput write(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer) {
  // On Wayland, the only thing that GDK reports at this level: right after it, it ends the process with
  // code 1.
  if ((level & G_LOG_LEVEL_MESSAGE) != 0 && field(fields, count, "GLIB_DOMAIN") == "Gdk") displayLost();
  const bool isFatal = (level & (G_LOG_LEVEL_ERROR | G_LOG_FLAG_FATAL)) != 0;
  if (!isFatal && !g_getenv("G_MESSAGES_DEBUG")) return G_LOG_WRITER_HANDLED;
  return g_log_writer_default(level, fields, count, nullptr);
}

}  // namespace

void tameToolkitMessages() { g_log_set_writer_func(write, nullptr, nullptr); }

void reportLossOf(GdkDisplay* display) {
  // On X11, GDK's own handler ends the process without a word.
  if (GDK_IS_X11_DISPLAY(display)) XSetIOErrorHandler([](Display*) -> int { displayLost(); });
}

}  // namespace desktop
