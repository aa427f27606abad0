#include "commands.hpp"
#include "common/failure.hpp"
#include "common/files.hpp"
#include "foundation/suite_store.hpp"
#include "shared/coding/json.hpp"
#include "shared/persistence/mac_defaults.hpp"

namespace status {
namespace {

/// Far more than any record; keeps a wrong file from being swallowed whole.
constexpr std::size_t largestRecord = 1 << 20;

TarnoMacStatusSnapshot readRecord(const std::filesystem::path& file) {
  const auto bytes = program::readFile(file, largestRecord);
  try {
    return TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(bytes);
  } catch (const foundation::DecodingError& error) {
    const std::string place =
        error.codingPath.empty() ? "the record" : "key \"" + foundation::description(error.codingPath) + "\"";
    throw program::Failure{EX_DATAERR, place + ": " + error.debugDescription + "; nothing was saved"};
  }
}

std::shared_ptr<foundation::UserDefaults> openSharedStore() {
  auto opening = foundation::openSuite(TarnoMacDefaults::appGroupIdentifier);
  if (!opening.store) throw program::Failure{EX_CANTCREAT, "nothing was saved: " + opening.failure};
  return opening.store;
}

/// Through a handle of its own, as another process would. A report that somebody else saved since is no
/// failure of ours.
bool canBeReadBack(const TarnoMacStatusSnapshot& snapshot, foundation::Date receivedAt) {
  const auto store = openSharedStore();
  if (store->object(TarnoMacDefaults::lastStatusAt) != foundation::DefaultsValue{receivedAt})
    return store->data(TarnoMacDefaults::lastStatus).has_value();
  return store->data(TarnoMacDefaults::lastStatus) == foundation::Data{TarnoJSON::encoder().encode(snapshot)};
}

}  // namespace

int save(const SaveOptions& options) {
  const auto snapshot = readRecord(options.file);
  const auto receivedAt = options.receivedAt.value_or(foundation::now());
  const auto store = openSharedStore();
  TarnoMacDefaults::persistStatus(snapshot, receivedAt, options.mirrorKey, *store);
  // Saving reports nothing; what it could not write is still pending, and then this fails as well.
  if (!store->synchronize() || !canBeReadBack(snapshot, receivedAt))
    throw program::Failure{EX_IOERR,
                           "the report could not be written to the shared store (see tarno-status doctor)"};
  return EX_OK;
}

}  // namespace status
