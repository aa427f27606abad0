#include "tarno/ui/layout.hpp"

#include <iterator>

#include "tarno/ui/layout/placement.hpp"

namespace ui {

Scene layout(const View& view, const ContainerShape& container, TextMeasurer& measurer) {
  const auto length = [](double value) { return bounded(value, 0, longestLength); };
  const Rect whole{{0, 0}, {length(container.size.width), length(container.size.height)}};
  const Rect room = whole.inset(length(container.contentMargin));
  LayoutPass pass{measurer};
  DisplayList placed;
  placeCentered(view, {}, room.size, room, pass, placed);

  Scene scene{.size = whole.size, .items = {}, .accessibility = std::move(placed.accessibility)};
  scene.items.reserve(placed.items.size() + 1);
  if (placed.containerBackground)
    scene.items.emplace_back(
        FillPath{Path::roundedRect(whole, length(container.cornerRadius)), *placed.containerBackground});
  scene.items.insert(scene.items.end(), std::make_move_iterator(placed.items.begin()),
                     std::make_move_iterator(placed.items.end()));
  return scene;
}

}  // namespace ui
