#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"

/// Judges how fresh a status is, by the local clock and the date of receipt.
namespace TarnoStatusFreshness {

/// A status that is older than this is stale.
inline constexpr tarno::TimeInterval localStaleAfter{150};

/// Returns the whole seconds from `receivedAt` to `now`, 0 if it is in the future; nothing without
/// `receivedAt`.
std::optional<std::int64_t> ageSeconds(std::optional<tarno::Date> receivedAt, tarno::Date now);

/// Returns the first moment at which a status received at `receivedAt` is stale by its age, at most
/// latestDate.
tarno::Date staleFrom(tarno::Date receivedAt);

/// Returns an age in seconds, minutes or hours, rounded down: "59s", "1m", "24h". A negative age is in
/// seconds.
std::string ageText(std::int64_t seconds);

/// Returns one line that says how old a stale status is.
std::string staleDetail(std::optional<std::int64_t> ageSeconds);

}  // namespace TarnoStatusFreshness
