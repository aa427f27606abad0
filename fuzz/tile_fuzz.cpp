// Lays out and draws tiles with any texts. Everything must stay inside the tile.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tarno/render/image.hpp"
#include "tarno/tarno-widget/tile.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static render::TextEngine text;
  const std::string bytes{reinterpret_cast<const char*>(data), size};
  const auto half = size / 2;
  const TarnoMacWidgetEntry entry{
      {}, TarnoMacStatusSnapshot{.deviceName = bytes.substr(0, half), .reason = bytes.substr(half)}, {}};
  const auto scene =
      extension::tileScene(TarnoMacWidgetView{entry}.body({}), widgetkit::WidgetFamily::systemMedium, text);
  for (const auto& item : scene.items) {
    const auto* const run = std::get_if<ui::TextRun>(&item);
    if (run != nullptr && run->box.right() > scene.size.width - extension::contentMargin + 0.01) std::abort();
  }
  encodeImage(scene, text, render::ImageFormat::png, 1);
  return 0;
}
