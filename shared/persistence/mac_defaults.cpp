#include "tarno/shared/persistence/mac_defaults.hpp"

#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

#include "tarno/foundation/suite_store.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"

namespace TarnoMacDefaults {
namespace {

using tarno::Date;
using tarno::UserDefaults;

std::mutex& appGroupFallbackLock() {
  static std::mutex lock;
  return lock;
}

/// Whether store() has already reported that it fell back. Guarded by appGroupFallbackLock.
bool loggedAppGroupFallback = false;

void reportFallbackOnce() {
  bool alreadyLogged = false;
  {
    const std::scoped_lock guard{appGroupFallbackLock()};
    alreadyLogged = std::exchange(loggedAppGroupFallback, true);
  }
  if (alreadyLogged) return;
  const std::string line = "ERROR: TarnoMacDefaults could not initialise app-group UserDefaults '" +
                           std::string{appGroupIdentifier} +
                           "'. Widget/app status sharing is broken — check entitlements and code signing.\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

using Entry = std::pair<std::string_view, tarno::DefaultsValue>;

/// Returns the keys and values that a report is saved as, in the order in which they are written. Throws
/// EncodingError.
std::vector<Entry> entriesOf(const TarnoMacStatusSnapshot& snapshot, Date receivedAt,
                             const std::optional<std::string>& mirrorKey) {
  std::vector<Entry> entries{{lastStatus, tarno::Data{TarnoJSON::encoder().encode(snapshot)}},
                             {lastStatusAt, receivedAt},
                             {lastStatusValue, std::string{snapshot.resolvedStatus().rawValue()}}};
  if (mirrorKey) entries.emplace_back(lastStatusMirrorKey, *mirrorKey);
  return entries;
}

std::optional<Date> storedReceiptDate(const UserDefaults& store) {
  const auto value = store.object(lastStatusAt);
  if (!value) return std::nullopt;
  const Date* const date = std::get_if<Date>(&*value);
  return date != nullptr ? std::optional{*date} : std::nullopt;
}

/// Returns the snapshot in the record. If there is none although something is stored, `fault` says why.
std::optional<TarnoMacStatusSnapshot> storedRecord(const UserDefaults& store, std::string& fault) {
  const auto record = store.data(lastStatus);
  if (!record) {
    if (store.object(lastStatus))
      fault = "the record is not of the type data";
    else if (store.object(lastStatusValue))
      fault = "there is a plain value, but no record";
    return std::nullopt;
  }
  try {
    return TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(record->bytes);
  } catch (const tarno::DecodingError& error) {
    fault = std::string{"the record cannot be decoded: "} + error.what();
    return std::nullopt;
  }
}

/// Returns a snapshot that holds only the plain value. Without a date of receipt its age is unknown.
std::optional<TarnoMacStatusSnapshot> snapshotOfPlainValue(const UserDefaults& store,
                                                           std::optional<Date> receivedAt) {
  const auto value = store.string(lastStatusValue);
  const auto status = value ? TarnoMacStatus::fromRawValue(*value) : std::nullopt;
  if (!status) return std::nullopt;
  return TarnoMacStatusSnapshot{.schema = "tarno.remote.v1",
                                .app = "Tarno",
                                .event = "last_status_value",
                                .status = *status,
                                .stale = !receivedAt.has_value(),
                                .message = "Last saved Mac status."};
}

}  // namespace

std::shared_ptr<tarno::UserDefaults> store() {
  if (auto shared = tarno::UserDefaults::suite(appGroupIdentifier)) return shared;
  reportFallbackOnce();
  return tarno::UserDefaults::standard();
}

void persistStatus(const TarnoMacStatusSnapshot& snapshot, Date receivedAt,
                   const std::optional<std::string>& mirrorKey, UserDefaults& store) {
  std::vector<Entry> entries;
  try {
    entries = entriesOf(snapshot, receivedAt, mirrorKey);
  } catch (const tarno::EncodingError&) {
    return;
  }
  for (auto& [key, value] : entries) store.set(key, std::move(value));
  store.synchronize();
}

void saveStatus(const TarnoMacStatusSnapshot& snapshot, Date receivedAt,
                const std::optional<std::string>& mirrorKey) {
  try {
    const auto entries = entriesOf(snapshot, receivedAt, mirrorKey);
    tarno::saveToSuite(appGroupIdentifier, {entries.begin(), entries.end()});
  } catch (const tarno::EncodingError& error) {
    throw tarno::SuiteError{tarno::SuiteError::Kind::value, error.what()};
  }
}

std::optional<TarnoStoredMacStatus> loadStatus(const UserDefaults& store, Date now) {
  return diagnoseStatus(store, now).status;
}

Diagnosis diagnoseStatus(const UserDefaults& store, Date now) {
  Diagnosis diagnosis;
  const auto receivedAt = storedReceiptDate(store);
  auto snapshot = storedRecord(store, diagnosis.fault);
  if (!snapshot) snapshot = snapshotOfPlainValue(store, receivedAt);
  if (snapshot)
    diagnosis.status = {snapshot->withLocalFreshness(receivedAt, now, TarnoStatusFreshness::localStaleAfter),
                        receivedAt};
  return diagnosis;
}

}  // namespace TarnoMacDefaults
