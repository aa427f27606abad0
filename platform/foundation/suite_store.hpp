#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/user_defaults.hpp"

namespace foundation {

/// Where a suite lives: one SQLite file in a directory of its own.
struct SuiteLocation {
  std::filesystem::path directory;  ///< ${XDG_DATA_HOME:-~/.local/share}/<suite name>, mode 0700
  std::filesystem::path file;       ///< defaults.sqlite in it, mode 0600
};

/// Nothing when neither XDG_DATA_HOME (absolute, as the XDG base directory specification asks) nor a home
/// directory is known, or when `name` is not a plain file name.
std::optional<SuiteLocation> suiteLocation(std::string_view name);

/// What opening a suite led to: a store, or one sentence (no full stop) that says why there is none.
struct SuiteOpening {
  std::shared_ptr<UserDefaults> store;
  std::string failure;
};

/// Opens the suite `name`, making its directory where it is missing; the file appears with the first save.
///
/// A directory or file that belongs to another user, is a symbolic link, is not of its kind, or can be
/// written by group or others is not opened.
///
/// The store that comes back reads all values at its first read, in one read transaction, and keeps to that
/// state until synchronize(), which writes the pending values in one transaction. A store that is released
/// with pending values writes them first. Waiting for another process's lock ends after 250 ms for a reader
/// and 2 s for a writer. A file that is damaged reads as nothing stored; the next write sets it aside, under
/// a new name beside the old one, and starts a fresh one. Values that the file holds in a form that this
/// store does not write count as missing: dates outside earliestDate to latestDate, NaN and values over 16
/// MiB among them. While such a value is pending, synchronize() writes nothing and answers false.
SuiteOpening openSuite(std::string_view name);

/// What a person wants to know about a suite when something is wrong with it.
struct SuiteReport {
  struct Entry {
    std::string key;
    std::string type;  ///< "data", "date", "string", "number", or "unreadable"
    std::size_t size;  ///< in bytes, of the stored form
  };
  struct Item {
    std::filesystem::path path;
    bool exists = false;
    uid_t owner = 0;
    mode_t mode = 0;  ///< permission bits only
  };

  std::optional<SuiteLocation> location;
  Item directory;
  Item file;
  std::string failure;         ///< why the suite does not open or the file does not read; empty when it does
  std::vector<Entry> entries;  ///< sorted by key
};

/// Looks at the suite `name` without making, changing or repairing anything.
SuiteReport inspectSuite(std::string_view name);

}  // namespace foundation
