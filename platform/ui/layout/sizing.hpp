#pragma once

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// The size that `view` takes when it is offered `proposal`, where `environment` holds. Never negative.
Size sizeThatFits(const View& view, const Environment& environment, const ProposedSize& proposal,
                  LayoutPass& pass);

/// How much larger than its content a padded view is.
Size paddingSize(const nodes::Padding& padding);

/// `proposal` less `taken`, but never negative.
ProposedSize reduced(const ProposedSize& proposal, const Size& taken);

}  // namespace ui
