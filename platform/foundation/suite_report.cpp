#include "foundation/suite_store.hpp"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "foundation/defaults_table.hpp"
#include "foundation/suite_directory.hpp"

namespace foundation {
namespace {

constexpr std::chrono::milliseconds patience{250};

SuiteReport::Item look(const std::filesystem::path& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) return {path};
  return {path, true, found.st_uid, found.st_mode & 07777};
}

/// Why a directory that is missing could not be made; empty when nothing stands in the way.
std::string obstacle(std::filesystem::path directory) {
  do {
    directory = directory.parent_path();
  } while (faccessat(AT_FDCWD, directory.c_str(), F_OK, AT_EACCESS) != 0 && errno == ENOENT);
  if (faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0) return {};
  return "cannot make a directory in " + directory.string() + ": " + std::generic_category().message(errno);
}

std::string describe(const SqliteError& error, const std::string& file) {
  if (error.code() == SQLITE_READONLY_ROLLBACK) {
    return "beside " + file +
           " lies the journal of a save that was cut off, which the next use of the suite undoes";
  }
  if ((error.code() & 0xFF) == SQLITE_BUSY) return file + " is locked by another program";
  if (error.isDamage()) return file + " is damaged (" + error.what() + "); the next save sets it aside";
  return "cannot read " + file + ": " + error.what();
}

std::vector<SuiteReport::Entry> readEntries(const std::filesystem::path& file, const Deadline& deadline) {
  const SqliteDatabase database{file, SqliteDatabase::Access::readOnly, deadline};
  if (database.usesWriteAheadLog()) {
    throw SuiteRefusal{file.string() +
                       " is in write-ahead mode and cannot be read without making files beside it"};
  }
  std::vector<SuiteReport::Entry> entries;
  database.execute("BEGIN");
  if (!checkDefaults(database)) return entries;
  visitDefaults(database, [&](const DefaultsRow& row) {
    entries.push_back({std::string{row.key}, std::string{row.type}, row.size});
  });
  return entries;
}

}  // namespace

SuiteReport inspectSuite(std::string_view name) {
  SuiteReport report;
  report.location = suiteLocation(name);
  if (!report.location) {
    report.failure = "there is no home for a suite called '" + std::string{name} + '\'';
    return report;
  }
  report.file = look(report.location->file);
  report.directory = look(report.location->directory);
  if (!report.directory.exists && errno == ENOENT) {
    report.failure = obstacle(report.location->directory);
    return report;
  }
  try {
    const SuiteDirectory directory{*report.location, SuiteDirectory::WhenMissing::refuse};
    const Deadline deadline{patience};
    const auto lock = directory.lockShared(deadline);
    if (directory.hasFile()) report.entries = readEntries(report.location->file, deadline);
  } catch (const SqliteError& error) {
    report.failure = describe(error, report.location->file.string());
  } catch (const SuiteRefusal& refusal) {
    report.failure = refusal.what();
  }
  return report;
}

}  // namespace foundation
