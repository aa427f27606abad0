#pragma once

#include "tarno/foundation/json_decoder.hpp"
#include "tarno/foundation/json_encoder.hpp"

/// How a status record becomes JSON and back: like any JSON, with ISO 8601 dates.
namespace TarnoJSON {

/// A new encoder at every call; the caller's own. Writes dates in UTC to the whole second, dropping the
/// rest; a date outside the years 0001 to 9999 becomes the nearest one inside, so that it reads back.
tarno::JSONEncoder encoder();

/// A new decoder at every call; the caller's own. Reads dates with and without fractional seconds; a text
/// that is neither is dataCorrupted, "Invalid ISO8601 date".
tarno::JSONDecoder decoder();

}  // namespace TarnoJSON
