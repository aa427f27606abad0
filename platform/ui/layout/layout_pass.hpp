#pragma once

#include <forward_list>
#include <unordered_map>

#include "ui/layout/environment.hpp"
#include "ui/layout/stack_fit.hpp"
#include "ui/text_measurer.hpp"

namespace ui {

/// What the steps of one layout share: the measurer, and how each stack came out for each offer that it was
/// made. A stack is asked again and again, by the stack around it for its flexibility and its share, then to
/// be placed; what is inside it need not be.
///
/// Entries are found by the address of a stack's node, so the view must outlive the pass.
struct LayoutPass {
  explicit LayoutPass(TextMeasurer& measurerOfTexts) : measurer(measurerOfTexts) {}

  /// The fit of `stack` for this environment and proposal; `fit` is called where it is not known yet. The
  /// result stays valid as long as the pass.
  template <class Fit>
  const StackFit& remembered(const void* stack, const Environment& environment, const ProposedSize& proposal,
                             const Fit& fit) {
    auto& entries = fits_[stack];
    for (const Entry& entry : entries)
      if (entry.proposal == proposal && entry.environment == environment) return entry.fit;
    return entries.emplace_front(Entry{environment, proposal, fit()}).fit;
  }

  TextMeasurer& measurer;

 private:
  struct Entry {
    Environment environment;
    ProposedSize proposal;
    StackFit fit;
  };
  std::unordered_map<const void*, std::forward_list<Entry>> fits_;
};

}  // namespace ui
