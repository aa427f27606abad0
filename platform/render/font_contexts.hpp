#pragma once

#include <pango/pango.h>

#include <optional>

#include "tarno/foundation/handle.hpp"

namespace render {

template <class T>
using ObjectHandle = tarno::Handle<T, g_object_unref>;

/// Where Pango finds faces: everywhere, and, for the many texts that need no other, among the files of the
/// rounded face alone. Setting fontconfig up for all fonts of a machine takes as long as all else that a
/// first tile needs.
class FontContexts {
 public:
  FontContexts();

  /// Knows the rounded face and no other. Null where that is not installed as Debian does it, or where the
  /// environment names a font configuration, which then decides alone.
  PangoContext* rounded() const { return rounded_.get(); }

  /// Knows every face; set up when it is first asked for.
  PangoContext* all();

  /// Whether the rounded face is installed, in whatever place.
  bool hasRounded();

 private:
  ObjectHandle<PangoContext> rounded_;
  ObjectHandle<PangoContext> all_;
  std::optional<bool> hasRounded_;
};

}  // namespace render
