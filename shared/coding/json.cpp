#include "shared/coding/json.hpp"

#include "foundation/iso8601.hpp"

namespace {

foundation::Date decodeISO8601Date(const foundation::Decoder& decoder) {
  if (const auto date = foundation::dateFromRFC3339(decoder.as<std::string>())) return *date;
  throw decoder.dataCorrupted("Invalid ISO8601 date");
}

}  // namespace

namespace TarnoJSON {

foundation::JSONEncoder encoder() {
  return foundation::JSONEncoder{foundation::DateEncodingStrategy::iso8601};
}

foundation::JSONDecoder decoder() { return foundation::JSONDecoder{decodeISO8601Date}; }

}  // namespace TarnoJSON
