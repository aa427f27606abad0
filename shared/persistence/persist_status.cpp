#include <utility>

#include "shared/coding/json.hpp"
#include "shared/persistence/mac_defaults.hpp"

namespace {

std::optional<foundation::Data> encodedRecord(const TarnoMacStatusSnapshot& snapshot) {
  try {
    return foundation::Data{TarnoJSON::encoder().encode(snapshot)};
  } catch (const foundation::EncodingError&) {
    return std::nullopt;
  }
}

}  // namespace

void TarnoMacDefaults::persistStatus(const TarnoMacStatusSnapshot& snapshot, foundation::Date receivedAt,
                                     const std::optional<std::string>& mirrorKey,
                                     foundation::UserDefaults& store) {
  auto record = encodedRecord(snapshot);
  if (!record) return;
  store.set(lastStatus, std::move(*record));
  store.set(lastStatusAt, receivedAt);
  store.set(lastStatusValue, std::string{snapshot.resolvedStatus().rawValue()});
  if (mirrorKey) store.set(lastStatusMirrorKey, *mirrorKey);
  store.synchronize();
}
