#include "ui/font.hpp"

namespace ui {

double textStyleSize(TextStyle style) {
  switch (style) {
    case TextStyle::title3: return 20;
    case TextStyle::body: return 15;
    case TextStyle::caption: return 12;
    case TextStyle::caption2: return 10;
  }
  return 15;
}

}  // namespace ui
