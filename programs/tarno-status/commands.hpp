#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/mac_status.hpp"

/// The commands of tarno-status. Each returns the program's exit code and throws program::Failure.
namespace status {

struct SaveOptions {
  std::filesystem::path file = "-";       ///< "-" is standard input
  std::optional<tarno::Date> receivedAt;  ///< now when absent
  std::optional<std::string> mirrorKey;
  bool isFollowing = false;   ///< see follow()
  bool acknowledges = false;  ///< each save that follow() makes
};

/// Decodes a record strictly and saves it into the shared store. A key that no record has is named on
/// standard error and left out. Hands over to follow() where that is asked for. Fails with EX_DATAERR for a
/// record or a mirror key that cannot be saved, EX_CANTCREAT where the store may not be used or made,
/// EX_TEMPFAIL when others keep it locked, else EX_IOERR.
int save(const SaveOptions& options);

/// Saves each line of standard input, one record in JSON, as save() does and as it arrives, until the input
/// ends. A line that cannot be saved is one line on standard error and the next goes on. At most 16 records
/// wait to be saved; more than that give way, the oldest first, and how many is said at most once a minute
/// and at the end. Blank lines count for nothing, a last line without a line feed is not saved. Where
/// `options` ask for it, each save is one line on standard output, unless nobody reads them. Returns the code
/// of the first line that failed, as save() would; giving way is no failure. From now on the process does not
/// die of SIGPIPE.
int follow(const SaveOptions& options);

/// Prints the last saved report, judged for freshness, for people or as JSON; null in JSON when nothing was
/// saved yet. Fails with EX_UNAVAILABLE when something is stored that cannot be read.
int show(bool asJSON);

/// Prints nothing: 0 when the last report is fresh and, where `expected` is given, of that status; else 1.
/// Fails as show() does.
int check(std::optional<TarnoMacStatus> expected);

/// Prints the state of the store at once, then a line whenever it changes: a save, a report that turns stale,
/// a store that comes or goes. Asleep in between. `format` is as for lineFormat(). What makes the store
/// unreadable is one line on standard error each time. Returns EX_OK when the reader of standard output has
/// gone. Fails with EX_USAGE for a wrong format, EX_UNAVAILABLE where there can be no store, EX_OSERR where
/// the system cannot watch it. From now on the process does not die of SIGPIPE.
int watch(const std::string& format);

/// Prints where the shared store is, what it holds, what is wrong with it and whether a save would succeed,
/// which it tries as far as it changes nothing, and what `tarno-widget fonts` says, where that program lies
/// beside this one. EX_UNAVAILABLE unless the tile shows a fresh status and a
/// save would succeed.
int doctor();

}  // namespace status
