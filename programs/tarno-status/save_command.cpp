#include <nlohmann/json.hpp>

#include "commands.hpp"
#include "common/command_line.hpp"
#include "common/failure.hpp"
#include "common/files.hpp"
#include "shared/coding/json.hpp"
#include "shared/persistence/mac_defaults.hpp"

namespace status {
namespace {

/// Far more than any record; keeps a wrong file from being swallowed whole.
constexpr std::size_t largestRecord = 1 << 20;

TarnoMacStatusSnapshot decodeRecord(std::string_view json) {
  try {
    return TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(json);
  } catch (const foundation::DecodingError& error) {
    const std::string place =
        error.codingPath.empty() ? "the record" : "key \"" + foundation::description(error.codingPath) + "\"";
    throw program::Failure{EX_DATAERR, place + ": " + error.debugDescription + "; nothing was saved"};
  }
}

int exitCode(foundation::SuiteError::Kind kind) {
  using Kind = foundation::SuiteError::Kind;
  switch (kind) {
    case Kind::value: return EX_DATAERR;
    case Kind::unusable: return EX_CANTCREAT;
    case Kind::busy: return EX_TEMPFAIL;
    case Kind::inputOutput: return EX_IOERR;
  }
  return EX_SOFTWARE;
}

/// One line that names the keys of the record that hold something which is not in what was saved.
void reportIgnoredKeys(const std::string& record, const TarnoMacStatusSnapshot& snapshot) {
  const auto given = nlohmann::json::parse(record);
  const auto saved = nlohmann::json::parse(TarnoJSON::encoder().encode(snapshot));
  std::string names;
  for (const auto& [key, value] : given.items())
    if (!value.is_null() && !saved.contains(key)) names += (names.empty() ? "\"" : ", \"") + key + '"';
  if (!names.empty()) program::complain("the report was saved without its unknown keys: " + names);
}

}  // namespace

int save(const SaveOptions& options) {
  const auto record = program::readFile(options.file, largestRecord);
  const auto snapshot = decodeRecord(record);
  try {
    TarnoMacDefaults::saveStatus(snapshot, options.receivedAt.value_or(foundation::now()), options.mirrorKey);
  } catch (const foundation::SuiteError& error) {
    throw program::Failure{exitCode(error.kind()), std::string{"nothing was saved: "} + error.what()};
  }
  reportIgnoredKeys(record, snapshot);
  return EX_OK;
}

}  // namespace status
