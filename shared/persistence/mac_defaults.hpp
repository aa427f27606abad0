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

inline constexpr std::string_view lastStatus = "tarno.lastStatus";            ///< data: the JSON record
inline constexpr std::string_view lastStatusAt = "tarno.lastStatusAt";        ///< date: when it was received
inline constexpr std::string_view lastStatusValue = "tarno.lastStatusValue";  ///< string: a status' raw value
inline constexpr std::string_view lastStatusMirrorKey =
    "tarno.lastStatusMirrorKey";  ///< string: the writer's own

/// Returns a new handle to the shared store. If that cannot be opened, returns the process's own store, which
/// nobody shares; the first time, one line on standard output says so. Any thread. The caller owns the
/// handle, which is for one thread at a time.
std::shared_ptr<tarno::UserDefaults> store();

/// Saves a report into `store`: the record, the date of receipt, the plain value of its resolved status and,
/// if there is one, the mirror key, in this order, then synchronizes once. Writes nothing if the report
/// cannot be encoded. Reports no error; saveStatus() does.
void persistStatus(const TarnoMacStatusSnapshot& snapshot, tarno::Date receivedAt,
                   const std::optional<std::string>& mirrorKey, tarno::UserDefaults& store);

/// Saves a report into the shared store, for a companion that must know whether it worked. On return the
/// report is on the disk and visible to every reader. If it throws SuiteError, the store is unchanged; what()
/// is one sentence for people, and kind() tells a report that cannot be saved (value) from a store that is
/// unusable, busy or failing. Waits at most 2 s for other savers, and as long as the disk takes. Any thread.
void saveStatus(const TarnoMacStatusSnapshot& snapshot, tarno::Date receivedAt,
                const std::optional<std::string>& mirrorKey = std::nullopt);

/// Returns the last saved report, judged for freshness at `now`: the record if it can be decoded, else a
/// report made of the plain value, else nothing. Writes nothing and reports no error. Any thread that may use
/// `store`.
std::optional<TarnoStoredMacStatus> loadStatus(const tarno::UserDefaults& store, tarno::Date now);

/// The result of loadStatus(), and why.
struct Diagnosis {
  std::optional<TarnoStoredMacStatus> status;
  std::string
      fault;  ///< why the record could not be used, without a full stop; also empty if nothing is stored
};

/// Loads like loadStatus(), for a program that explains to people why there is no status, or only a part of
/// it.
Diagnosis diagnoseStatus(const tarno::UserDefaults& store, tarno::Date now);

}  // namespace TarnoMacDefaults
