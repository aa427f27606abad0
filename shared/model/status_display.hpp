#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tarno/shared/model/status_snapshot.hpp"

/// The texts that people see about a report, or about a missing one.
namespace TarnoStatusDisplay {

/// The status line if there is no report.
inline constexpr std::string_view noStatus = "No status";
/// The detail line if nothing explains the status.
inline constexpr std::string_view waiting = "Waiting for Tarno status.";

/// Returns the status line of `report`; noStatus if there is no report.
std::string statusLine(const std::optional<TarnoMacStatusSnapshot>& report);

/// Returns the detail line of `report`; `waiting` if there is no report.
std::string detailLine(const std::optional<TarnoMacStatusSnapshot>& report);

/// Returns the name of the Mac in `report`; "Mac" if there is no report or no name in it.
std::string deviceName(const std::optional<TarnoMacStatusSnapshot>& report);

/// Returns the strongest sign of presence in `report`: "Face seen", "Watch near", or "Presence quiet" if
/// there is neither or no report. The age of the report does not matter.
std::string presence(const std::optional<TarnoMacStatusSnapshot>& report);

}  // namespace TarnoStatusDisplay
