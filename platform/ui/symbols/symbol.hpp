#pragma once

#include <string_view>
#include <vector>

#include "tarno/ui/path.hpp"

namespace ui {

/// A pictogram as one outline, filled by the nonzero rule. Lengths are in ems: 1 is the font size at which it
/// is shown. The symbol takes up `size` in a layout. The outline lies between (0, 0) and `size`, and its
/// optical centre is in the middle of that box.
struct Symbol {
  std::string_view name;
  Size size;
  Path outline;
};

/// Returns the symbol `name`, or null. It lives until the process ends. Any thread.
const Symbol* findSymbol(std::string_view name);

/// Returns all symbols. They live until the process ends. Any thread.
const std::vector<Symbol>& allSymbols();

}  // namespace ui
