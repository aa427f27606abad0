#include "ui/layout.hpp"

#include <iterator>

#include "ui/layout/placement.hpp"
#include "ui/layout/sizing.hpp"

namespace ui {

Scene layout(const View& view, const ContainerShape& container, TextMeasurer& measurer) {
  const Rect whole{{0, 0}, container.size};
  const Rect room = whole.inset(container.contentMargin);
  LayoutPass pass{measurer};
  Placed placed;
  placeAligned(view, {}, {room.size.width, room.size.height}, room, center, pass, placed);

  Scene scene{.size = container.size, .items = {}, .accessibility = std::move(placed.accessibility)};
  scene.items.reserve(placed.items.size() + 3);
  scene.items.emplace_back(BeginClip{Path::roundedRect(whole, container.cornerRadius)});
  if (placed.containerBackground)
    scene.items.emplace_back(FillPath{Path::rect(whole), *placed.containerBackground});
  scene.items.insert(scene.items.end(), std::make_move_iterator(placed.items.begin()),
                     std::make_move_iterator(placed.items.end()));
  scene.items.emplace_back(EndClip{});
  return scene;
}

Size sizeThatFits(const View& view, const ProposedSize& proposal, TextMeasurer& measurer) {
  LayoutPass pass{measurer};
  return sizeThatFits(view, Environment{}, proposal, pass);
}

}  // namespace ui
