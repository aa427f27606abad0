#include "tarno/tarno-status/saving.hpp"

#include <algorithm>

#include "tarno/common/failure.hpp"
#include "tarno/common/files.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"
#include "tarno/tarno-status/commands.hpp"

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

}  // namespace

Record Record::decode(const tarno::Decoder& decoder) {
  const auto& known = TarnoMacStatusSnapshot::CodingKeys::all;
  Record record{.report = decoder.as<TarnoMacStatusSnapshot>()};
  for (const auto& key : decoder.presentKeys()) {
    if (std::find(known.begin(), known.end(), key) != known.end()) continue;
    record.complaint += record.complaint.empty() ? "the report was saved without its unknown keys: " : ", ";
    record.complaint += '"' + key + '"';
  }
  return record;
}

Record decodeRecord(std::string_view text) {
  if (text.find_first_not_of(" \t\r\n") == text.npos)
    throw program::Failure{EX_DATAERR, "the record is empty; nothing was saved"};
  try {
    return TarnoJSON::decoder().decode<Record>(text);
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

int save(const SaveOptions& options) {
  if (options.isFollowing) return follow(options);
  const auto record = decodeRecord(program::readFile(options.file, largestRecord));
  saveReport(record.report, options.receivedAt.value_or(tarno::now()), options.mirrorKey);
  if (!record.complaint.empty()) program::complain(record.complaint);
  return EX_OK;
}

}  // namespace status
