#pragma once

#include <string_view>
#include <vector>

#include "tarno/ui/path.hpp"

namespace ui {

/// A pictogram as one outline, filled by the nonzero rule. Lengths are in ems: 1 is the font size that it is
/// shown at. The outline lies within (0, 0) to `size`; `size` is what the symbol takes up in a layout, and
/// its optical centre is the centre of that box.
struct Symbol {
  std::string_view name;
  Size size;
  Path outline;
};

/// Returns the symbol of that name, or null. It lives until the process ends. Any thread.
const Symbol* findSymbol(std::string_view name);

/// All symbols, to draw or check the whole set.
const std::vector<Symbol>& allSymbols();

}  // namespace ui
