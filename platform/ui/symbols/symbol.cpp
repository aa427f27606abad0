#include "ui/symbols/symbol.hpp"

#include <algorithm>

#include "ui/symbols/symbol_outlines.hpp"

namespace ui {

const Symbol* findSymbol(std::string_view name) {
  const auto& symbols = allSymbols();
  const auto found =
      std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& s) { return s.name == name; });
  return found == symbols.end() ? nullptr : &*found;
}

const std::vector<Symbol>& allSymbols() {
  using namespace symbol_outlines;
  static const std::vector<Symbol> symbols{lock(),          openLock(),           turningLock(), question(),
                                           clock(),         clockWithAlarm(),     smile(),       watch(),
                                           movingPointer(), personWithCheckMark()};
  return symbols;
}

}  // namespace ui
