#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"

/// How old a status may be. Freshness is judged by the local clock, from the moment at which the report was
/// received.
namespace TarnoStatusFreshness {

/// A status whose local age exceeds this is stale.
inline constexpr tarno::TimeInterval localStaleAfter{150};

/// The whole seconds from `receivedAt` to `now`, 0 when it lies in the future; nothing without `receivedAt`.
std::optional<std::int64_t> ageSeconds(std::optional<tarno::Date> receivedAt, tarno::Date now);

/// The first moment at which a status that was received at `receivedAt`, no later than latestDate, is stale
/// by its age.
tarno::Date staleFrom(tarno::Date receivedAt);

/// An age in seconds, minutes or hours, rounded down: "59s", "1m", "24h". A negative one is in seconds.
std::string ageText(std::int64_t seconds);

/// One line that says how old a stale status is.
std::string staleDetail(std::optional<std::int64_t> ageSeconds);

}  // namespace TarnoStatusFreshness
