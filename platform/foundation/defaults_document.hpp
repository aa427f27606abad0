#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tarno/foundation/defaults_value.hpp"

namespace tarno {

/// The maximum size of one data value or string in a document, in bytes.
inline constexpr std::size_t largestDefaultsValue = std::size_t{4} << 20;

// The file format of a defaults store: a JSON object with one line for each key, such as
//
//   "key": {"type": "date", "value": "2026-11-16T15:41:35.250000Z"}
//
// `type` is data, date, string or number. `value` is a string, or a number for the type number. Data and
// strings whose bytes are not UTF-8 have `base64` (RFC 4648, section 4, with padding) instead of `value`. A
// date is an RFC 3339 date-time in the years 0001 to 9999 of UTC, written with microseconds.

/// Returns the document that holds `values`. Throws EncodingError, with the key as its path, for a key that
/// is not UTF-8 and for a value that could not be read back: too large, a date out of range, or a number that
/// is not finite.
std::string encodeDefaults(const DefaultsValues& values);

/// Returns the values in `document`. Throws DecodingError if any part of it does not have the form above. If
/// a key occurs twice, the last value counts.
DefaultsValues decodeDefaults(std::string_view document);

}  // namespace tarno
