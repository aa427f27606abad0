#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tarno/foundation/defaults_value.hpp"

namespace tarno {

/// The size of the largest data and the largest text that a document holds, in bytes.
inline constexpr std::size_t largestDefaultsValue = std::size_t{4} << 20;

// The form in which values are kept: a JSON object with a line for each key, such as
//
//   "key": {"type": "date", "value": "2026-11-16T15:41:35.250000Z"}
//
// `type` is data, date, string or number. `value` is a text, for a number a number. Data and strings whose
// bytes are not UTF-8 have `base64` (RFC 4648, section 4, padded) in place of `value`. A date is an RFC 3339
// date-time in the years 0001 to 9999 of UTC, written to the microsecond.

/// Throws EncodingError with the key as its path for a key that is not UTF-8 and for a value that would not
/// read back: too large, a date out of range, a number that is not finite.
std::string encodeDefaults(const DefaultsValues& values);

/// Throws DecodingError when `document` is not as described above, in any place. Of a key that stands there
/// twice, the last counts.
DefaultsValues decodeDefaults(std::string_view document);

}  // namespace tarno
