#include "tarno/ui/layout/stack_layout.hpp"

#include <algorithm>
#include <cmath>

#include "tarno/ui/layout/sizing.hpp"

namespace ui {
namespace {

/// A stack that is being laid out. `along` is the axis on which its children follow each other.
struct Stack {
  Axis along;
  Axis across;
  double spacing;
  double alignment;  ///< how much of the unused space across goes before a child, from 0 to 1
  const std::vector<View>& views;
  const Environment& environment;
  const Size& proposal;
  LayoutPass& pass;

  StackLayout::Child ask(std::size_t index, double length) const {
    StackLayout::Child child;
    child.offer = proposal;
    child.offer.*along.length = length;
    child.size = sizeThatFits(views[index], environment, child.offer, pass);
    return child;
  }

  double flexibility(std::size_t index) const {
    const double span = ask(index, infinity).size.*along.length - ask(index, 0).size.*along.length;
    return span > 0 ? span : 0;  // infinity minus infinity is a NaN, which gives 0
  }

  std::vector<StackLayout::Child> shareOut(double length) const {
    struct Turn {
      std::size_t index;
      double flexibility;
    };
    std::vector<Turn> turns;
    turns.reserve(views.size());
    for (std::size_t i = 0; i < views.size(); ++i) turns.push_back({i, flexibility(i)});
    std::stable_sort(turns.begin(), turns.end(),
                     [](const Turn& a, const Turn& b) { return a.flexibility < b.flexibility; });

    std::vector<StackLayout::Child> children(views.size());
    double waiting = static_cast<double>(views.size());
    for (const Turn& turn : turns) {
      StackLayout::Child& child = children[turn.index];
      child = ask(turn.index, std::max(length, 0.0) / waiting);
      length -= child.size.*along.length;
      waiting -= 1;
    }
    return children;
  }

  std::vector<StackLayout::Child> sized() const {
    const double left = proposal.*along.length - spacing * static_cast<double>(views.size() - 1);
    if (left > 0 && std::isfinite(left) && views.size() > 1) return shareOut(left);

    std::vector<StackLayout::Child> children;
    children.reserve(views.size());
    for (std::size_t i = 0; i < views.size(); ++i) children.push_back(ask(i, std::max(left, 0.0)));
    return children;
  }

  StackLayout layout() const {
    if (views.empty()) return {};
    StackLayout result{sized(), {}};
    for (const auto& child : result.children)
      result.size.*across.length = std::max(result.size.*across.length, child.size.*across.length);
    double position = 0;
    for (auto& child : result.children) {
      child.origin.*along.position = position;
      child.origin.*across.position = (result.size.*across.length - child.size.*across.length) * alignment;
      position += child.size.*along.length + spacing;
    }
    result.size.*along.length = std::max(position - spacing, 0.0);
    return result;
  }
};

template <class Node>
const StackLayout& layoutAlong(const Axis& along, const Axis& across, const Node& stack,
                               const Environment& environment, const Size& proposal, LayoutPass& pass) {
  return pass.cached(&stack, environment, proposal, [&] {
    const auto& [alignment, spacing] = stack.options;
    return Stack{along, across, spacing, fraction(alignment), stack.children, environment, proposal, pass}
        .layout();
  });
}

}  // namespace

const StackLayout& layoutStack(const nodes::HStack& stack, const Environment& environment,
                               const Size& proposal, LayoutPass& pass) {
  return layoutAlong(horizontalAxis, verticalAxis, stack, environment, proposal, pass);
}

const StackLayout& layoutStack(const nodes::VStack& stack, const Environment& environment,
                               const Size& proposal, LayoutPass& pass) {
  return layoutAlong(verticalAxis, horizontalAxis, stack, environment, proposal, pass);
}

}  // namespace ui
