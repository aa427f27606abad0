#include "widget/style/widget_style.hpp"

namespace TarnoMacWidgetStyle {

Color statusColor(const std::optional<TarnoMacStatusSnapshot>& snapshot) {
  if (snapshot && snapshot->isStale()) return muted;
  if (!snapshot || !snapshot->status) return muted;
  switch (*snapshot->status) {
    case TarnoMacStatus::locked: return teal;
    case TarnoMacStatus::unlocked: return coral;
    case TarnoMacStatus::locking: return gold;
    case TarnoMacStatus::unknown: break;
  }
  return muted;
}

std::string statusIcon(const std::optional<TarnoMacStatusSnapshot>& snapshot) {
  if (snapshot && snapshot->isStale()) return "clock.badge.exclamationmark";
  if (!snapshot || !snapshot->status) return "questionmark.circle.fill";
  switch (*snapshot->status) {
    case TarnoMacStatus::locked: return "lock.fill";
    case TarnoMacStatus::unlocked: return "lock.open.fill";
    case TarnoMacStatus::locking: return "lock.rotation";
    case TarnoMacStatus::unknown: break;
  }
  return "questionmark.circle.fill";
}

}  // namespace TarnoMacWidgetStyle
