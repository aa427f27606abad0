#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tarno/shared/model/status_snapshot.hpp"

/// What is displayed for people about a report, or where there is none.
namespace TarnoStatusDisplay {

/// The status line where there is no report.
inline constexpr std::string_view noStatus = "No status";
/// The detail line where nothing explains the status.
inline constexpr std::string_view waiting = "Waiting for Tarno status.";

/// The report's own line, or noStatus.
std::string statusLine(const std::optional<TarnoMacStatusSnapshot>& report);

/// The report's own line, or `waiting`.
std::string detailLine(const std::optional<TarnoMacStatusSnapshot>& report);

/// The name of the Mac that `report` is about; "Mac" when there is no report or it names none.
std::string deviceName(const std::optional<TarnoMacStatusSnapshot>& report);

/// The strongest sign of a person that `report` holds: "Face seen", "Watch near", or "Presence quiet" when it
/// holds neither or there is no report. How old the report is does not matter.
std::string presence(const std::optional<TarnoMacStatusSnapshot>& report);

}  // namespace TarnoStatusDisplay
