#pragma once

#include <pango/pango.h>

#include <optional>

#include "tarno/foundation/handle.hpp"

namespace render {

template <class T>
using ObjectHandle = tarno::Handle<T, g_object_unref>;

/// The fonts that Pango finds: all fonts of the machine, or, for the many texts that need no other, Quicksand
/// alone. Loading the fonts of the whole machine takes as long as everything else that a first tile needs.
class FontContexts {
 public:
  FontContexts();

  /// Contains only Quicksand. Null if Debian's package of it is missing or the environment names a font
  /// configuration, which then decides alone.
  PangoContext* rounded() const { return rounded_.get(); }

  /// Contains every font. Created on first use.
  PangoContext* all();

  /// Returns whether Quicksand is installed anywhere.
  bool hasRounded();

 private:
  ObjectHandle<PangoContext> rounded_;
  ObjectHandle<PangoContext> all_;
  std::optional<bool> hasRounded_;
};

}  // namespace render
