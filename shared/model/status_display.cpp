#include "tarno/shared/model/status_display.hpp"

namespace TarnoStatusDisplay {

std::string statusLine(const std::optional<TarnoMacStatusSnapshot>& report) {
  return report ? report->statusLine() : std::string{noStatus};
}

std::string detailLine(const std::optional<TarnoMacStatusSnapshot>& report) {
  return report ? report->detailLine() : std::string{waiting};
}

std::string deviceName(const std::optional<TarnoMacStatusSnapshot>& report) {
  return report ? report->deviceName.value_or("Mac") : "Mac";
}

std::string presence(const std::optional<TarnoMacStatusSnapshot>& report) {
  if (report && report->facePresent.value_or(false)) return "Face seen";
  if (report && report->companionPresent.value_or(false)) return "Watch near";
  return "Presence quiet";
}

}  // namespace TarnoStatusDisplay
