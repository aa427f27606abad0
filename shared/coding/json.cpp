#include "shared/coding/json.hpp"

#include "foundation/iso8601.hpp"

namespace {

using foundation::ISO8601DateFormatter;

// Two readers serve the whole process, each made when it is first needed. They hold no mutable state, so that
// any number of decodes may use them at once.

/// Requires a fraction of a second.
const ISO8601DateFormatter& tarno() {
  static const ISO8601DateFormatter formatter{foundation::withInternetDateTime |
                                              foundation::withFractionalSeconds};
  return formatter;
}

/// Allows no fraction of a second.
const ISO8601DateFormatter& tarnoNoFractions() {
  static const ISO8601DateFormatter formatter{foundation::withInternetDateTime};
  return formatter;
}

foundation::Date decodeISO8601Date(const foundation::Decoder& decoder) {
  const auto text = decoder.as<std::string>();
  if (const auto date = tarno().date(text)) return *date;
  if (const auto date = tarnoNoFractions().date(text)) return *date;
  throw decoder.dataCorrupted("Invalid ISO8601 date");
}

}  // namespace

namespace TarnoJSON {

foundation::JSONEncoder encoder() {
  return foundation::JSONEncoder{foundation::DateEncodingStrategy::iso8601};
}

foundation::JSONDecoder decoder() { return foundation::JSONDecoder{decodeISO8601Date}; }

}  // namespace TarnoJSON
