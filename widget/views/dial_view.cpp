#include "tarno/widget/views/dial_view.hpp"

#include <algorithm>

#include "tarno/shared/model/status_display.hpp"
#include "tarno/widget/style/widget_style.hpp"

namespace {

using namespace ui;
using namespace TarnoMacWidgetStyle;
using enum ui::FontWeight;

// The position of the arc on the ring. Clockwise from 3 o'clock it starts at 126 + 0.08 * 360 = 154.8 degrees
// and spans up to 302.4 degrees, so that the gap is between 6 and 9 o'clock.
constexpr double arcStart = 0.08;
constexpr double arcSpan = 0.84;
constexpr Angle arcRotation = Angle::degrees(126);

/// Input within this time counts as recent.
constexpr double recentInputSeconds = 12;

/// Converts ASCII letters only, which is enough for the status lines.
std::string lowercased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

}  // namespace

View TarnoMacDialView::body() const {
  const StrokeStyle track{.lineWidth = std::max(0.074 * size, 6.0), .lineCap = LineCap::butt};
  const StrokeStyle arc{.lineWidth = track.lineWidth, .lineCap = LineCap::round};
  const Color accent = statusColor(status);
  const double disc = 0.7 * size;

  return ZStack(Circle{}.stroke(line.opacity(0.72), track),
                Circle{}
                    .trim(arcStart, arcStart + arcSpan * progress())
                    .stroke(accent, arc)
                    .rotationEffect(arcRotation),
                Circle{}.fill(white.opacity(0.58)).frame({.width = disc, .height = disc}),
                VStack({.alignment = center, .spacing = 5},
                       Image(statusIcon(status))
                           .font(Font::system(0.18 * size).weight(bold))
                           .foregroundStyle(accent),
                       Text(TarnoStatusDisplay::statusLine(status))
                           .font(Font::system(0.13 * size).weight(bold).rounded())
                           .foregroundStyle(ink)
                           .lineLimit(1)
                           .minimumScaleFactor(0.85),
                       showsSignals ? std::optional{signalDots()} : std::nullopt)
                    .frame({.width = 0.62 * size}))
      .frame({.width = size, .height = size})
      .accessibilityElement(accessibilityLabel());
}

/// Returns the fraction of the arc that is drawn.
double TarnoMacDialView::progress() const {
  if (!status) return 0.28;
  if (status->isStale()) return 0.34;
  switch (status->status.value_or(TarnoMacStatus::unknown)) {
    case TarnoMacStatus::locked: return 1.0;
    case TarnoMacStatus::unlocked: return 0.54;
    case TarnoMacStatus::locking: return 0.74;
    case TarnoMacStatus::unknown: break;
  }
  return 0.28;
}

std::string TarnoMacDialView::accessibilityLabel() const {
  return TarnoStatusDisplay::deviceName(status) + " " +
         (status ? lowercased(status->statusLine()) : "status unknown");
}

View TarnoMacDialView::signalDots() const {
  const bool face = status && status->facePresent.value_or(false);
  const bool watch = status && status->companionPresent.value_or(false);
  const bool input = status && status->inputIdleSeconds && *status->inputIdleSeconds < recentInputSeconds;
  return HStack({.alignment = center, .spacing = std::max(0.032 * size, 4.0)},
                signalDot(face, "face.smiling"), signalDot(watch, "applewatch"),
                signalDot(input, "cursorarrow.motionlines"))
      .accessibilityHidden();
}

View TarnoMacDialView::signalDot(bool active, std::string systemImage) const {
  const double diameter = std::max(0.112 * size, 18.0);
  return Image(std::move(systemImage))
      .font(Font::system(std::max(0.052 * size, 8.0)).weight(bold))
      .foregroundStyle(active ? tealDark : muted.opacity(0.58))
      .frame({.width = diameter, .height = diameter})
      .background(Circle{}.fill(active ? teal.opacity(0.16) : line.opacity(0.4)));
}
