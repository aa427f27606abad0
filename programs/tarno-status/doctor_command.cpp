#include <pwd.h>
#include <sysexits.h>

#include <algorithm>
#include <cstdio>

#include "commands.hpp"
#include "common/dates.hpp"
#include "common/output.hpp"
#include "foundation/suite_store.hpp"
#include "shared/coding/json.hpp"
#include "shared/persistence/mac_defaults.hpp"

namespace status {
namespace {

using foundation::SuiteReport;

constexpr std::string_view keys[] = {TarnoMacDefaults::lastStatus, TarnoMacDefaults::lastStatusAt,
                                     TarnoMacDefaults::lastStatusValue,
                                     TarnoMacDefaults::lastStatusMirrorKey};

/// One line of the report: a label, padded, and what there is to say.
std::string line(std::string_view label, const std::string& text) {
  std::string padded{label};
  padded.resize(std::max<std::size_t>(padded.size() + 1, 26), ' ');
  return padded + program::printable(text) + "\n";
}

std::string itemText(const SuiteReport::Item& item) {
  if (!item.exists) return "missing";
  const passwd* const owner = getpwuid(item.owner);
  const std::string name = owner != nullptr ? owner->pw_name : "user " + std::to_string(item.owner);
  char mode[8];
  std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(item.mode));
  return "owner " + name + ", mode " + mode;
}

const SuiteReport::Entry* find(const SuiteReport& report, std::string_view key) {
  const auto found = std::find_if(report.entries.begin(), report.entries.end(),
                                  [key](const auto& entry) { return entry.key == key; });
  return found != report.entries.end() ? &*found : nullptr;
}

std::string entryText(const SuiteReport::Entry* entry) {
  if (entry == nullptr) return "nothing stored";
  return entry->type + ", " + std::to_string(entry->size) + " bytes";
}

/// What the stored values amount to, read the way the widget reads them.
struct Diagnosis {
  std::optional<TarnoStoredMacStatus> loaded;
  std::string recordFault;  ///< why the record does not decode; empty when it does or there is none
};

Diagnosis diagnose(const foundation::UserDefaults& store) {
  Diagnosis diagnosis{.loaded = TarnoMacDefaults::loadStatus(store, foundation::now())};
  const auto record = store.data(TarnoMacDefaults::lastStatus);
  if (!record) return diagnosis;
  try {
    TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(record->bytes);
  } catch (const foundation::DecodingError& error) {
    diagnosis.recordFault = error.what();
  }
  return diagnosis;
}

std::string recordText(const SuiteReport& report, const Diagnosis& diagnosis) {
  if (!diagnosis.recordFault.empty()) return "does not decode: " + diagnosis.recordFault;
  const auto* const entry = find(report, TarnoMacDefaults::lastStatus);
  if (entry == nullptr) return "none";
  return entry->type == "data" ? "decodes" : "is not data";
}

std::string ageText(const Diagnosis& diagnosis) {
  if (!diagnosis.loaded) return "no report";
  const auto& [snapshot, receivedAt] = *diagnosis.loaded;
  if (!receivedAt) return "unknown: no receipt date is stored";
  const auto age = foundation::secondsBetween(*receivedAt, foundation::now()).count();
  const auto received = "received " + program::dateText(*receivedAt);
  if (age < 0) return received + ", which lies in the future";
  return std::to_string(snapshot.ageSeconds.value_or(0)) + " s, " + received;
}

std::string verdict(const SuiteReport& report, const Diagnosis& diagnosis) {
  if (!report.failure.empty())
    return "The shared store cannot be used, so the tile says \"No status\": " + report.failure + ".";
  if (report.entries.empty())
    return "Nothing was saved yet, so the tile says \"No status\"; save a report with tarno-status save.";
  if (!diagnosis.loaded)
    return "The tile says \"No status\": neither the record nor the plain value can be used; the next save "
           "mends it.";
  const auto& snapshot = diagnosis.loaded->snapshot;
  const auto tile = "the tile says \"" + snapshot.statusLine() + "\"";
  if (!diagnosis.recordFault.empty())
    return "The record does not decode, so only the plain value is used and " + tile +
           "; the next save mends it.";
  if (find(report, TarnoMacDefaults::lastStatus) == nullptr)
    return "There is no record, so only the plain value is used and " + tile + ".";
  if (!diagnosis.loaded->receivedAt)
    return "The receipt date is missing, so that the report's age is unknown; " + tile + ".";
  if (snapshot.isStale())
    return "The last report is stale, so " + tile + " until the companion application saves a new one.";
  return "All is well: " + tile + ".";
}

}  // namespace

int doctor() {
  const auto report = foundation::inspectSuite(TarnoMacDefaults::appGroupIdentifier);
  Diagnosis diagnosis;
  if (report.failure.empty() && report.directory.exists) {
    const auto opening = foundation::openSuite(TarnoMacDefaults::appGroupIdentifier);
    if (opening.store) diagnosis = diagnose(*opening.store);
  }

  std::string text = line("store", report.location ? report.location->file.string() : "nowhere");
  text += line("opens", report.failure.empty() ? "yes" : "no: " + report.failure);
  text += line("directory", itemText(report.directory));
  text += line("file", itemText(report.file));
  for (const auto key : keys) text += line(key, entryText(find(report, key)));
  text += line("record", recordText(report, diagnosis));
  text += line("report's age", ageText(diagnosis));
  text += "\n" + program::printable(verdict(report, diagnosis)) + "\n";
  program::writeOutput(text);
  return EX_OK;
}

}  // namespace status
