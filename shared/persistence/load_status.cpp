#include "shared/coding/json.hpp"
#include "shared/freshness/status_freshness.hpp"
#include "shared/persistence/mac_defaults.hpp"

namespace {

using foundation::Date;
using foundation::UserDefaults;

std::optional<Date> storedReceiptDate(const UserDefaults& store) {
  const auto value = store.object(TarnoMacDefaults::lastStatusAt);
  if (!value) return std::nullopt;
  const Date* const date = std::get_if<Date>(&*value);
  return date != nullptr ? std::optional{*date} : std::nullopt;
}

std::optional<TarnoMacStatusSnapshot> storedRecord(const UserDefaults& store) {
  const auto record = store.data(TarnoMacDefaults::lastStatus);
  if (!record) return std::nullopt;
  try {
    return TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(record->bytes);
  } catch (const foundation::DecodingError&) {
    return std::nullopt;
  }
}

/// A record with no more in it than the plain value tells. Without a receipt date nothing says how old it is.
std::optional<TarnoMacStatusSnapshot> snapshotOfPlainValue(const UserDefaults& store,
                                                           std::optional<Date> receivedAt) {
  const auto value = store.string(TarnoMacDefaults::lastStatusValue);
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

std::optional<TarnoStoredMacStatus> TarnoMacDefaults::loadStatus(const UserDefaults& store, Date now) {
  const auto receivedAt = storedReceiptDate(store);
  auto snapshot = storedRecord(store);
  if (!snapshot) snapshot = snapshotOfPlainValue(store, receivedAt);
  if (!snapshot) return std::nullopt;
  return TarnoStoredMacStatus{
      snapshot->withLocalFreshness(receivedAt, now, TarnoStatusFreshness::localStaleAfter), receivedAt};
}
