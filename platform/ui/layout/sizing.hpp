#pragma once

#include "ui/layout/environment.hpp"
#include "ui/layout/layout_pass.hpp"
#include "ui/view.hpp"

namespace ui {

/// The size that `view` takes when it is offered `proposal`, where `environment` holds. Never negative.
Size sizeThatFits(const View& view, const Environment& environment, const ProposedSize& proposal,
                  LayoutPass& pass);

/// What a shape takes: all that it is offered, 10 points where it is asked for its ideal.
Size shapeSize(const ProposedSize& proposal);

/// What an image's symbol takes in `font`; 1 em square if no symbol has that name.
Size imageSize(const nodes::Image& image, const Font& font);

/// How much larger than its content a padded view is.
Size paddingSize(const nodes::Padding& padding);

/// `proposal` less `taken`, but not less than nothing.
ProposedSize reduced(const ProposedSize& proposal, const Size& taken);

}  // namespace ui
