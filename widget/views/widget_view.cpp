#include "tarno/widget/views/widget_view.hpp"

#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/shared/model/status_display.hpp"
#include "tarno/widget/style/widget_style.hpp"
#include "tarno/widget/views/dial_view.hpp"

namespace {

using namespace ui;
using namespace TarnoMacWidgetStyle;
using enum ui::FontWeight;
using enum ui::TextStyle;

}  // namespace

View TarnoMacWidgetView::body(const widgetkit::EnvironmentValues& environment) const {
  return environment.widgetFamily == widgetkit::WidgetFamily::systemSmall ? compactView() : expandedView();
}

View TarnoMacWidgetView::compactView() const {
  return TarnoMacDialView{entry.status, 132, true}
      .body()
      .frame({.maxWidth = infinity, .maxHeight = infinity, .alignment = center})
      .containerBackground(paper);
}

View TarnoMacWidgetView::expandedView() const {
  const auto& status = entry.status;
  return HStack({.alignment = center, .spacing = 14}, TarnoMacDialView{status, 124, true}.body(),
                VStack({.alignment = leading, .spacing = 8},
                       Text(TarnoStatusDisplay::deviceName(status))
                           .font(Font::system(caption).rounded().weight(semibold))
                           .foregroundStyle(muted)
                           .lineLimit(1),
                       Text(TarnoStatusDisplay::statusLine(status))
                           .font(Font::system(title3).rounded().weight(bold))
                           .foregroundStyle(ink)
                           .lineLimit(1)
                           .minimumScaleFactor(0.85),
                       Text(TarnoStatusDisplay::detailLine(status))
                           .font(Font::system(caption).rounded().weight(medium))
                           .foregroundStyle(muted)
                           .lineLimit(2)
                           .minimumScaleFactor(0.85),
                       HStack({.alignment = center, .spacing = 6}, pill(ageLine(), "clock", periwinkle),
                              pill(presenceLine(), "person.crop.circle.badge.checkmark", tealDark))))
      .frame({.maxWidth = infinity, .maxHeight = infinity, .alignment = leading})
      .containerBackground(paper);
}

View TarnoMacWidgetView::pill(std::string title, std::string systemImage, Color tint) {
  return Label(std::move(title), std::move(systemImage))
      .font(Font::system(caption2).rounded().weight(semibold))
      .foregroundStyle(tint)
      .lineLimit(1)
      .minimumScaleFactor(0.85)
      .padding(EdgeSet::horizontal, 8)
      .padding(EdgeSet::vertical, 5)
      .background(Capsule{RoundedCornerStyle::continuous}.fill(tint.opacity(0.12)));
}

std::string TarnoMacWidgetView::ageLine() const {
  const auto age = TarnoStatusFreshness::ageSeconds(entry.lastRefresh, tarno::now());
  return age ? TarnoStatusFreshness::ageText(*age) + " ago" : "Not synced";
}

std::string TarnoMacWidgetView::presenceLine() const { return TarnoStatusDisplay::presence(entry.status); }
