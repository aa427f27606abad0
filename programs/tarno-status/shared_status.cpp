#include "tarno/tarno-status/shared_status.hpp"

#include "tarno/foundation/suite_store.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"

namespace status {
namespace {

/// Why there is not the whole report that a save stores; empty when there is, or when nothing is stored.
std::string faultOfValues(const tarno::UserDefaults& store) {
  if (!store.object(TarnoMacDefaults::lastStatus)) {
    const bool isEmpty = !store.object(TarnoMacDefaults::lastStatusValue);
    return isEmpty ? "" : "there is no record beside the plain value";
  }
  const auto record = store.data(TarnoMacDefaults::lastStatus);
  if (!record) return "the record is not data";
  try {
    TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(record->bytes);
    return "";
  } catch (const tarno::DecodingError& error) {
    return std::string{"the record does not decode: "} + error.what();
  }
}

}  // namespace

SharedStatus readSharedStatus(tarno::Date now) {
  auto [store, failure, damage] = tarno::openSuite(TarnoMacDefaults::appGroupIdentifier);
  if (!store) return {.fault = failure};
  if (!damage.empty()) return {.store = store, .fault = damage + "; the next save sets it aside"};
  return {store, TarnoMacDefaults::loadStatus(*store, now), faultOfValues(*store)};
}

bool isFresh(const std::optional<TarnoStoredMacStatus>& status) {
  return status && status->receivedAt && !status->snapshot.isStale();
}

}  // namespace status
