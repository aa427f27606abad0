#include <algorithm>
#include <nlohmann/json.hpp>

#include "tarno/common/dates.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/suite_store.hpp"
#include "tarno/render/image.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"
#include "tarno/tarno-widget/commands.hpp"
#include "tarno/tarno-widget/description_json.hpp"
#include "tarno/tarno-widget/drawing.hpp"
#include "tarno/tarno-widget/localization.hpp"
#include "tarno/tarno-widget/shared_pixels.hpp"
#include "tarno/ui/description/scene_description.hpp"

namespace extension {
namespace {

using nlohmann::ordered_json;

/// Returns the text of a date to wait for, rounded up to the millisecond so that it is never too early.
std::string momentText(tarno::Date moment) {
  return program::dateText(std::chrono::ceil<std::chrono::milliseconds>(moment));
}

/// Returns when the status of `entry` turns stale by its age; nothing if it is stale already or never will be
/// stale.
std::optional<tarno::Date> staleFrom(const TarnoMacWidgetEntry& entry) {
  const auto& [date, status, lastRefresh] = entry;
  if (!status || status->isStale() || !lastRefresh) return std::nullopt;
  return TarnoStatusFreshness::staleFrom(*lastRefresh);
}

/// Returns a label of limited length. Cuts it between two characters of UTF-8.
std::string shortened(std::string text) {
  constexpr std::size_t mostBytes = 1024;
  constexpr std::string_view ellipsis = "…";
  if (text.size() <= mostBytes) return text;
  auto end = mostBytes - ellipsis.size();
  while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.replace(end, text.npos, ellipsis);
}

ordered_json elements(const ui::Scene& scene) {
  auto result = ordered_json::array();
  for (const auto& element : ui::describeAccessibility(scene).children) {
    auto& added = result.emplace_back(ordered_json{{"role", element.name}});
    added.update(attributes(element));
    added["label"] = shortened(added["label"]);
  }
  return result;
}

/// Returns what a screen reader says when the status changes: the label of the tile's only image. It names
/// the Mac and its status, and contains no age, which would change without a new report.
std::string announcement(const ui::Scene& scene) {
  const auto image =
      std::find_if(scene.accessibility.begin(), scene.accessibility.end(),
                   [](const auto& element) { return element.role == ui::AccessibilityElement::Role::image; });
  return image != scene.accessibility.end() ? shortened(image->label) : std::string{};
}

ordered_json watched() {
  const auto location = tarno::suiteLocation(TarnoMacDefaults::appGroupIdentifier);
  if (!location) return nullptr;
  return {{"folder", location->directory.string()}, {"file", location->file.filename().string()}};
}

/// Draws the picture and returns the answer for the host. Throws if there can be no picture.
ordered_json drawFrame(const Widget& widget, const FrameOptions& options) {
  const auto size = drawn([&] { return render::pixelSize(tileSize(options.family), options.scale); });
  const SharedPixels pixels{options.descriptor, size};
  const auto timeline = widgetkit::timeline(widget, {.family = options.family});
  const auto& entry = timeline.entries.front();
  render::TextEngine text;
  const auto view = widget.content(entry, {.widgetFamily = options.family});
  const auto scene = tileScene(view, options.family, text);
  drawn([&] { drawPixels(scene, text, options.scale, pixels.data(), pixels.stride()); });

  ordered_json answer{{"width", size.width}, {"height", size.height}, {"stride", pixels.stride()}};
  answer["scale"] = options.scale;
  answer["tile"] = {{"width", scene.size.width}, {"height", scene.size.height}};
  answer["title"] = localized(widget.displayName);
  answer["announcement"] = announcement(scene);
  answer["accessibility"] = elements(scene);
  answer["reload_after"] = momentText(timeline.policy.date);
  answer["stale_from"] = nullptr;
  if (const auto stale = staleFrom(entry)) answer["stale_from"] = momentText(*stale);
  answer["watch"] = watched();
  return answer;
}

void print(const ordered_json& answer) {
  // A path may contain bytes that are not UTF-8, which JSON does not allow.
  program::writeOutput(answer.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n");
}

}  // namespace

int frame(const Widget& widget, const FrameOptions& options) {
  ordered_json answer;
  int exitCode = EX_OK;
  try {
    answer = drawFrame(widget, options);
  } catch (...) {
    const auto failure = program::currentFailure();
    answer = {{"error", failure.what()}};
    exitCode = failure.exitCode();
  }
  print(answer);
  return exitCode;
}

}  // namespace extension
