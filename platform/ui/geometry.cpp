#include "ui/geometry.hpp"

#include <algorithm>

namespace ui {

Rect Rect::inset(double margin) const {
  return {{origin.x + margin, origin.y + margin},
          {std::max(size.width - 2 * margin, 0.0), std::max(size.height - 2 * margin, 0.0)}};
}

}  // namespace ui
