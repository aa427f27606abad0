#pragma once

#include <gtk/gtk.h>

#include <vector>

#include "ui/scene.hpp"

namespace desktop {

/// A new window of a kind whose accessible object has no widgets below it, but the elements that
/// setAccessibility() gives it. Floating, like any new widget.
GtkWindow* newTileWindow();

/// What a screen reader finds in `window`, in reading order, frames in points from its corner. An element
/// whose label changed is announced with its new name, elements that come or go as added or removed.
void setAccessibility(GtkWindow* window, const std::vector<ui::AccessibilityElement>& elements);

}  // namespace desktop
