#include "ui/symbols/symbol.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "ui/description/path_bounds.hpp"

namespace ui {
namespace {

TEST(Symbol, FillsTheMiddleOfItsBox) {
  for (const auto& [name, size, outline] : allSymbols()) {
    SCOPED_TRACE(name);
    const Rect ink = bounds(outline);
    EXPECT_GE(std::min(ink.origin.x, ink.origin.y), -1e-9);
    EXPECT_GE(std::min(size.width - ink.right(), size.height - ink.bottom()), -1e-9);
    EXPECT_GT(std::min(ink.size.width / size.width, ink.size.height / size.height), 0.75);
    EXPECT_NEAR(ink.center().x, size.width / 2, 0.06);
    EXPECT_NEAR(ink.center().y, size.height / 2, 0.05);
  }
  EXPECT_EQ(findSymbol("lock"), nullptr);
}

}  // namespace
}  // namespace ui
