#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/mac_status.hpp"

/// The commands of tarno-status. Each returns the exit code of the program and throws program::Failure.
namespace status {

struct SaveOptions {
  std::filesystem::path file = "-";       ///< "-" is standard input
  std::optional<tarno::Date> receivedAt;  ///< when the report was received; absent: now
  std::optional<std::string> mirrorKey;
  bool isFollowing = false;   ///< whether to call follow()
  bool acknowledges = false;  ///< whether follow() prints a line for each save
};

/// Decodes a record strictly and saves it into the shared store. Unknown keys are ignored and named on
/// standard error. Calls follow() if the options ask for it. Fails with EX_DATAERR if the record or the
/// mirror key cannot be saved, EX_CANTCREAT if the store may not be used or created, EX_TEMPFAIL if other
/// programs keep it locked, otherwise EX_IOERR.
int save(const SaveOptions& options);

/// Saves the records on standard input, one in JSON per line, as save() does, until the input ends. A record
/// is saved as soon as it arrives. Of the records that arrive during a save, only the newest is saved. The
/// number of skipped records is printed at most once a minute and at the end. For a line that cannot be
/// saved, one line is printed on standard error. Blank lines and a last line without a line feed are ignored.
/// If `options` ask for it, prints a line on standard output for each save. Never waits for the readers of
/// its outputs: lines that they do not read in time are lost. Returns the code that save() would return for
/// the first line that failed. Skipping is not a failure. Ignores SIGPIPE from now on.
int follow(const SaveOptions& options);

/// Prints the last saved report, judged for freshness, for people or as JSON (null if nothing was saved yet).
/// Fails with EX_UNAVAILABLE if something is stored that cannot be read.
int show(bool asJSON);

/// Returns 0 if the last report is fresh and, if `expected` is given, has this status; otherwise returns 1.
/// Prints nothing. Fails like show().
int check(std::optional<TarnoMacStatus> expected);

/// Prints a line about the stored status, and another one whenever the line changes: after a save, when the
/// report turns stale, when the store appears, disappears or becomes unreadable. Sleeps in between. `format`
/// is as for lineFormat(). If the store cannot be read, prints the reason on standard error, once until it
/// changes. Returns EX_OK when nobody reads standard output any more. Fails with EX_USAGE for a wrong format,
/// EX_UNAVAILABLE if there can be no store, EX_OSERR if the system has no timer left. Ignores SIGPIPE from
/// now on.
int watch(const std::string& format);

/// Prints where the shared store is, what it holds, what is wrong with it, whether a save would succeed
/// (which it tries without changing the store), whether the user has another store, the font, and the
/// confinement. The last line says what the tile shows and why. Returns EX_UNAVAILABLE unless the tile shows
/// a fresh status that was received in the past, and a save would succeed.
int doctor();

}  // namespace status
