#pragma once

#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/layout/node.hpp"

namespace ui {

/// Sizes and places the children of a stack. Across the stack each is offered what the stack is. Along it,
/// what is left after the spacing is shared: the children are asked in turn, from the least flexible to the
/// most (the flexibility of a child is how far its lengths lie apart when it is offered nothing and
/// everything), each is offered an equal share of what those before it left over.
///
/// Nested stacks are not exponential work: offers of nothing or everything go to every child as they are, so
/// finding out a child's flexibility visits what is inside it once. The result lives as long as `pass`.
const StackLayout& layoutStack(const nodes::HStack& stack, const Environment& environment,
                               const Size& proposal, LayoutPass& pass);
const StackLayout& layoutStack(const nodes::VStack& stack, const Environment& environment,
                               const Size& proposal, LayoutPass& pass);

}  // namespace ui
