#include "tarno/widget/style/widget_style.hpp"

#include <array>

namespace TarnoMacWidgetStyle {
namespace {

struct Appearance {
  Color color;
  const char* icon;
};

constexpr Appearance stale{muted, "clock.badge.exclamationmark"};

/// The colour and symbol of each status, in the order of the cases.
constexpr std::array<Appearance, TarnoMacStatus::allCases.size()> appearances{
    {{teal, "lock.fill"},
     {coral, "lock.open.fill"},
     {gold, "lock.rotation"},
     {muted, "questionmark.circle.fill"}}};

const Appearance& appearance(const std::optional<TarnoMacStatusSnapshot>& snapshot) {
  if (!snapshot) return appearances[TarnoMacStatus::unknown];
  return snapshot->isStale() ? stale : appearances[snapshot->resolvedStatus()];
}

}  // namespace

Color statusColor(const std::optional<TarnoMacStatusSnapshot>& snapshot) {
  return appearance(snapshot).color;
}

std::string statusIcon(const std::optional<TarnoMacStatusSnapshot>& snapshot) {
  return appearance(snapshot).icon;
}

}  // namespace TarnoMacWidgetStyle
