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

/// Saves standard input, one record in JSON per line, as save() does, until the input ends. A line is saved
/// as it arrives; of lines that arrive while a save is under way, only the newest is saved, and the number of
/// those skipped is said at most once a minute and at the end. A line that cannot be saved is one line on
/// standard error. Blank lines count for nothing, a last line without a line feed is not saved. Where
/// `options` ask for it, each save is one line on standard output. Waits for no reader of the two outputs:
/// what they do not take is lost. Returns the code of the first line that failed, as save() would; skipping
/// is no failure. From now on the process does not die of SIGPIPE.
int follow(const SaveOptions& options);

/// Prints the last saved report, judged for freshness, for people or as JSON; null in JSON when nothing was
/// saved yet. Fails with EX_UNAVAILABLE when something is stored that cannot be read.
int show(bool asJSON);

/// Prints nothing: 0 when the last report is fresh and, where `expected` is given, of that status; else 1.
/// Fails as show() does.
int check(std::optional<TarnoMacStatus> expected);

/// Prints a line about the stored status at once, and another whenever that line would differ from the last:
/// after a save, when the report turns stale, when the store comes, goes or may no longer be read. Sleeps in
/// between. `format` is as for lineFormat(). What makes the store unreadable is one line on standard error
/// each time. Returns EX_OK when the reader of standard output has gone. Fails with EX_USAGE for a wrong
/// format, EX_UNAVAILABLE where there can be no store, EX_OSERR where the system cannot watch it. From now on
/// the process does not die of SIGPIPE.
int watch(const std::string& format);

/// Prints where the shared store is, what it holds, what is wrong with it, whether a save would succeed
/// (which it tries as far as it changes nothing), whether the user has another store, and what `tarno-widget
/// fonts` says. The last line says what the tile shows and why. EX_UNAVAILABLE unless the tile shows a fresh
/// status, received in the past, and a save would succeed.
int doctor();

}  // namespace status
