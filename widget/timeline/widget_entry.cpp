#include "tarno/widget/timeline/widget_entry.hpp"

TarnoMacWidgetEntry TarnoMacWidgetEntry::placeholder() {
  TarnoMacWidgetEntry entry;
  entry.date = tarno::now();
  entry.status = TarnoMacStatusSnapshot{.schema = "tarno.remote.v1",
                                        .app = "Tarno",
                                        .event = "locked",
                                        .deviceName = "Kivo's Mac",
                                        .seenAt = tarno::now(),
                                        .status = TarnoMacStatus::locked,
                                        .reason = "Mac locked.",
                                        .source = "Tarno",
                                        .facePresent = true,
                                        .companionPresent = true,
                                        .inputIdleSeconds = 3.0,
                                        .stale = false,
                                        .ageSeconds = 0};
  entry.lastRefresh = tarno::now();
  return entry;
}
