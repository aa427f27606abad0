#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tarno/shared/freshness/stored_status.hpp"

namespace status {

/// Returns what the tile says and the record itself as a JSON object; null if there is no status. `indent` is
/// the number of spaces for each level; -1 means one line.
std::string jsonText(const std::optional<TarnoStoredMacStatus>& stored, int indent);

/// Returns one line about the status, without a line feed. `since` is when the status became what it is.
using LineFormat = std::function<std::string(const std::optional<TarnoStoredMacStatus>&, tarno::Date since)>;

/// Returns the format that `text` names:
///
/// - "json": as jsonText();
/// - "waybar": what waybar's custom modules read with "return-type": "json", see waybar-custom(5). `alt` and
///   `class` are the same word: locked, unlocked, locking or unknown, "stale", or "none" where nothing is
///   stored. `percentage` is the confidence of a report that is not stale, where it lies from 0 to 100;
/// - any other text with at least one of these in braces: status, status_line, detail_line, presence, device,
///   age ("2m", empty when it is unknown), received_at and since. Two braces stand for one. Values are made
///   printable, the text around them stays as it is.
///
/// Throws program::Failure (EX_USAGE) for any other text.
LineFormat lineFormat(const std::string& text);

}  // namespace status
