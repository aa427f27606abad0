#pragma once

#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/layout/node.hpp"

namespace ui {

/// Sizes and places the children of a stack. Across the stack, each child is offered what the stack is
/// offered. Along the stack, the children share the length that is left after the spacing. They are asked one
/// after the other, the least flexible first, and each is offered an equal share of what its predecessors
/// have left. The flexibility of a child is the difference between its lengths when it is offered no length
/// and an infinite one.
///
/// Nesting does not make the work exponential: a stack that is offered no length or an infinite one passes
/// the offer on to its children, without finding out their flexibility. The result lives as long as `pass`.
const StackLayout& layoutStack(const nodes::HStack& stack, const Environment& environment,
                               const Size& proposal, LayoutPass& pass);
const StackLayout& layoutStack(const nodes::VStack& stack, const Environment& environment,
                               const Size& proposal, LayoutPass& pass);

}  // namespace ui
