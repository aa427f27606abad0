#include "tarno/shared/coding/json.hpp"

#include "tarno/foundation/iso8601.hpp"

namespace {

tarno::Date decodeISO8601Date(const tarno::Decoder& decoder) {
  if (const auto date = tarno::dateFromRFC3339(decoder.as<std::string>())) return *date;
  throw decoder.dataCorrupted("Invalid ISO8601 date");
}

}  // namespace

namespace TarnoJSON {

tarno::JSONEncoder encoder() { return {}; }

tarno::JSONDecoder decoder() { return tarno::JSONDecoder{decodeISO8601Date}; }

}  // namespace TarnoJSON
