#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/suite_error.hpp"
#include "tarno/foundation/user_defaults.hpp"
#include "tarno/shared/freshness/stored_status.hpp"

/// The store that the companion application and the widget share, and the ways through it.
namespace TarnoMacDefaults {

/// The app group whose members share the store.
inline constexpr std::string_view appGroupIdentifier = "K7T2M9Q4XW.dev.tarno.group";

inline constexpr std::string_view lastStatus = "tarno.lastStatus";            ///< data: the JSON record
inline constexpr std::string_view lastStatusAt = "tarno.lastStatusAt";        ///< date: when it was received
inline constexpr std::string_view lastStatusValue = "tarno.lastStatusValue";  ///< string: a status' raw value
inline constexpr std::string_view lastStatusMirrorKey =
    "tarno.lastStatusMirrorKey";  ///< string: the writer's own

/// A new handle on the shared store, or, when that cannot be opened, the process's own store, which nobody
/// shares; the first time that this happens in the process one line on standard output says so. Any thread;
/// the handle is the caller's own, for one thread at a time.
std::shared_ptr<tarno::UserDefaults> store();

/// Saves a report into `store`: the record, the receipt date, the plain value of its resolved status and,
/// when there is one, the mirror key, in this order, then synchronizes once. A report that cannot be encoded
/// writes nothing. Reports no error; saveStatus() does.
void persistStatus(const TarnoMacStatusSnapshot& snapshot, tarno::Date receivedAt,
                   const std::optional<std::string>& mirrorKey, tarno::UserDefaults& store);

/// Saves the same into the shared store, for a companion application that must know whether it worked. Once
/// this returns, the report is on the disk and every reader finds it. When it throws SuiteError, whose what()
/// is one sentence for people, the store holds what it held before; kind() tells a report that cannot be
/// saved (value) from a store that is unusable, busy or failing. Waits at most 2 s for others who save, and
/// as long as the disk takes. Any thread.
void saveStatus(const TarnoMacStatusSnapshot& snapshot, tarno::Date receivedAt,
                const std::optional<std::string>& mirrorKey = std::nullopt);

/// The last saved report, judged for freshness at `now`: the record when it decodes, else one made of the
/// plain value, else nothing. Writes nothing and reports no error, whatever the store holds. Any thread that
/// may use `store`.
std::optional<TarnoStoredMacStatus> loadStatus(const tarno::UserDefaults& store, tarno::Date now);

/// What loadStatus() finds, and why.
struct Diagnosis {
  std::optional<TarnoStoredMacStatus> status;
  std::string
      fault;  ///< why the record could not be used, without a full stop; empty where nothing is stored, too
};

/// Loads like loadStatus(), for a program that tells people why there is no status, or not all of it.
Diagnosis diagnoseStatus(const tarno::UserDefaults& store, tarno::Date now);

}  // namespace TarnoMacDefaults
