#pragma once

#include <forward_list>
#include <unordered_map>
#include <vector>

#include "tarno/ui/geometry.hpp"
#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/text_measurer.hpp"

namespace ui {

/// An axis. Code that is the same for both axes takes it as a parameter.
struct Axis {
  double Size::*length;
  double Point::*position;
};

inline constexpr Axis horizontalAxis{&Size::width, &Point::x};
inline constexpr Axis verticalAxis{&Size::height, &Point::y};

/// The layout of a stack for one proposal.
struct StackLayout {
  struct Child {
    Size offer;
    Size size;     ///< what the child takes
    Point origin;  ///< its corner, from the stack's corner
  };

  std::vector<Child> children;  ///< in the same order as in the stack
  Size size;                    ///< the size of the stack: its children and the spacing between them
};

/// What the steps of one layout share: the measurer and a cache of stack layouts. A stack is sized
/// repeatedly: twice for its flexibility, once for its share, and again when it is placed. The cache avoids
/// sizing its children each time.
///
/// The key is the address of a stack's node, so the view must outlive the pass.
struct LayoutPass {
  explicit LayoutPass(TextMeasurer& measurerOfTexts) : measurer(measurerOfTexts) {}

  /// Returns the layout of `stack` for this environment and proposal; calls `make` if it is not cached. The
  /// result is valid as long as the pass.
  template <class Make>
  const StackLayout& cached(const void* stack, const Environment& environment, const Size& proposal,
                            const Make& make) {
    auto& entries = stacks_[stack];
    for (const Entry& entry : entries)
      if (entry.proposal == proposal && entry.environment == environment) return entry.layout;
    return entries.emplace_front(Entry{environment, proposal, make()}).layout;
  }

  TextMeasurer& measurer;

 private:
  struct Entry {
    Environment environment;
    Size proposal;
    StackLayout layout;
  };
  std::unordered_map<const void*, std::forward_list<Entry>> stacks_;
};

}  // namespace ui
