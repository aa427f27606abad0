#pragma once

#include "tarno/foundation/json_decoder.hpp"
#include "tarno/foundation/json_encoder.hpp"

/// The JSON coders of the status record. They write dates in ISO 8601.
namespace TarnoJSON {

/// Returns a new encoder, which the caller owns. It writes dates in UTC in whole seconds, rounded towards the
/// past. A date outside the years 0001 to 9999 becomes the nearest date inside, so that it can be read back.
tarno::JSONEncoder encoder();

/// Returns a new decoder, which the caller owns. It reads dates with and without fractional seconds. Any
/// other text is dataCorrupted, "Invalid ISO8601 date".
tarno::JSONDecoder decoder();

}  // namespace TarnoJSON
