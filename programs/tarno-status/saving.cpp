#include "tarno/tarno-status/saving.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tarno/common/failure.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"

namespace status {
namespace {

int exitCode(tarno::SuiteError::Kind kind) {
  using Kind = tarno::SuiteError::Kind;
  switch (kind) {
    case Kind::value: return EX_DATAERR;
    case Kind::unusable: return EX_CANTCREAT;
    case Kind::busy: return EX_TEMPFAIL;
    case Kind::inputOutput: return EX_IOERR;
  }
  return EX_SOFTWARE;
}

bool isKnown(const std::string& key) {
  const auto& known = TarnoMacStatusSnapshot::CodingKeys::all;
  return std::find(known.begin(), known.end(), key) != known.end();
}

}  // namespace

TarnoMacStatusSnapshot decodeRecord(std::string_view record) {
  try {
    return TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(record);
  } catch (const tarno::DecodingError& error) {
    const std::string place =
        error.codingPath.empty() ? "the record" : "key \"" + tarno::description(error.codingPath) + "\"";
    throw program::Failure{EX_DATAERR, place + ": " + error.debugDescription + "; nothing was saved"};
  }
}

void saveReport(const TarnoMacStatusSnapshot& report, tarno::Date receivedAt,
                const std::optional<std::string>& mirrorKey) {
  try {
    TarnoMacDefaults::saveStatus(report, receivedAt, mirrorKey);
  } catch (const tarno::SuiteError& error) {
    throw program::Failure{exitCode(error.kind()), std::string{"nothing was saved: "} + error.what()};
  }
}

std::string unknownKeysText(const std::string& record) {
  std::string names;
  const auto document = nlohmann::json::parse(record);
  for (const auto& [key, value] : document.items())
    if (!value.is_null() && !isKnown(key)) names += (names.empty() ? "\"" : ", \"") + key + '"';
  return names.empty() ? "" : "the report was saved without its unknown keys: " + names;
}

}  // namespace status
