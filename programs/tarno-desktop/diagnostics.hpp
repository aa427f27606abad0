#pragma once

#include <gdk/gdk.h>

namespace desktop {

/// Keeps standard error for what a person can act on: the toolkit's own remarks are dropped, unless
/// G_MESSAGES_DEBUG asks for them. Call before the toolkit starts.
void tameToolkitMessages();

/// Makes the loss of `display` end the process with one line and EX_UNAVAILABLE, whichever system it is on.
/// Needs tameToolkitMessages().
void reportLossOf(GdkDisplay* display);

}  // namespace desktop
