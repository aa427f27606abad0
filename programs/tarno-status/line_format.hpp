#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tarno/shared/freshness/stored_status.hpp"

namespace status {

/// Returns the texts of the tile and the record itself as a JSON object; "null" if there is no status.
/// `indent` is the number of spaces for each level; -1 means one line.
std::string jsonText(const std::optional<TarnoStoredMacStatus>& stored, int indent);

/// Returns one line about the status, without a line feed. `since` is the time of the last change of the
/// status.
using LineFormat = std::function<std::string(const std::optional<TarnoStoredMacStatus>&, tarno::Date since)>;

/// Returns the format that `text` names:
///
/// - "json": what jsonText() returns.
/// - "waybar": the JSON for a custom module of waybar with "return-type": "json", see waybar-custom(5).
///   `alt` and `class` are the same word: locked, unlocked, locking, unknown, stale, or none if nothing is
///   stored. `percentage` is the confidence of a report that is not stale, if it is from 0 to 100.
/// - Any other text with at least one of these names in braces: status, status_line, detail_line, presence,
///   device, age ("2m"; empty if it is unknown), received_at and since. A double brace stands for a single
///   one. Values are made printable; the text around them stays as it is.
///
/// Throws program::Failure (EX_USAGE) for any other text.
LineFormat lineFormat(const std::string& text);

}  // namespace status
