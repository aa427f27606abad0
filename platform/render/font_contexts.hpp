#pragma once

#include <pango/pango.h>

#include <optional>

#include "tarno/foundation/handle.hpp"

namespace render {

template <class T>
using ObjectHandle = tarno::Handle<T, g_object_unref>;

/// The two sets of fonts that Pango searches: Quicksand alone, which is enough for most texts, and all fonts
/// of the machine. Loading all fonts takes as long as everything else that a first tile needs. For one thread
/// at a time.
class FontContexts {
 public:
  FontContexts();

  /// Returns the context with only Quicksand. Null if Debian's package of it is missing, or if the
  /// environment names a font configuration, because that then decides which fonts there are.
  PangoContext* rounded() const { return rounded_.get(); }

  /// Returns the context with all fonts, which is created on first use.
  PangoContext* all();

  /// Returns whether Quicksand is installed anywhere.
  bool hasRounded();

 private:
  ObjectHandle<PangoContext> rounded_;
  ObjectHandle<PangoContext> all_;
  std::optional<bool> hasRounded_;
};

}  // namespace render
