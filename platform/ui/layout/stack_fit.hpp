#pragma once

#include <vector>

#include "ui/geometry.hpp"

namespace ui {

/// How a stack comes out for an offer.
struct StackFit {
  struct Child {
    ProposedSize offer;
    Size size;     ///< what the child takes of it
    Point origin;  ///< from the stack's corner
  };

  std::vector<Child> children;  ///< in the order of the stack's
  Size size;                    ///< of the stack: its children and the spacing between them
};

}  // namespace ui
