#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/suite_error.hpp"
#include "tarno/foundation/user_defaults.hpp"
#include "tarno/shared/freshness/stored_status.hpp"

/// The store that the companion and the widget share, and the operations on it.
namespace TarnoMacDefaults {

/// The app group whose members share the store.
inline constexpr std::string_view appGroupIdentifier = "K7T2M9Q4XW.dev.tarno.group";

inline constexpr std::string_view lastStatus = "tarno.lastStatus";      ///< data: the JSON record
inline constexpr std::string_view lastStatusAt = "tarno.lastStatusAt";  ///< date: when it was received
inline constexpr std::string_view lastStatusValue =
    "tarno.lastStatusValue";  ///< string: the raw status value
inline constexpr std::string_view lastStatusMirrorKey =
    "tarno.lastStatusMirrorKey";  ///< string: a key of the writer's own choice, which nothing here reads

/// Returns a new handle to the shared store. If that cannot be opened, returns the process's own store, which
/// is not shared, and the first time prints one line about it on standard output. Any thread may call this.
/// The caller owns the handle, which is for one thread at a time.
std::shared_ptr<tarno::UserDefaults> store();

/// Saves a report into `store`: the record, the date of receipt, the plain value of its resolved status and,
/// if there is one, the mirror key, in this order, then synchronizes once. Writes nothing if the report
/// cannot be encoded. Reports no error; saveStatus() does.
void persistStatus(const TarnoMacStatusSnapshot& snapshot, tarno::Date receivedAt,
                   const std::optional<std::string>& mirrorKey, tarno::UserDefaults& store);

/// Saves a report into the shared store, for a companion that must know whether this worked. On return the
/// report is on the disk and visible to every reader. If it throws SuiteError, the store is unchanged; what()
/// is one sentence for people, and kind() says whether the report cannot be saved (value) or the store is
/// unusable, busy or failing. Waits at most 2 s for other savers, and then for the disk. Any thread.
void saveStatus(const TarnoMacStatusSnapshot& snapshot, tarno::Date receivedAt,
                const std::optional<std::string>& mirrorKey = std::nullopt);

/// Returns the last saved report, judged for freshness at `now`: the record if it can be decoded, else a
/// report made of the plain value, else nothing. Writes nothing and reports no error. Call it on a thread
/// that may use `store`.
std::optional<TarnoStoredMacStatus> loadStatus(const tarno::UserDefaults& store, tarno::Date now);

/// The result of loadStatus() with its reason.
struct Diagnosis {
  std::optional<TarnoStoredMacStatus> status;
  std::string
      fault;  ///< why the record could not be used, without a full stop; also empty if nothing is stored
};

/// Does what loadStatus() does, and also says why there is no report or only the plain value.
Diagnosis diagnoseStatus(const tarno::UserDefaults& store, tarno::Date now);

}  // namespace TarnoMacDefaults
