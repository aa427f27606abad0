#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "foundation/deadline.hpp"
#include "foundation/suite_store.hpp"

namespace foundation {

/// Why a suite is not used, as one sentence without a full stop.
class SuiteRefusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws the refusal when what lies at `path`, of which `found` tells, is not of `kind` (S_IFDIR or
/// S_IFREG), belongs to another user or can be written by group or others.
void refuseUnsafe(const std::filesystem::path& path, const struct stat& found, mode_t kind);

/// A lock on a suite's directory, held while it lives.
class [[nodiscard]] SuiteLock {
 public:
  explicit SuiteLock(int descriptor) : descriptor_(descriptor) {}
  ~SuiteLock();
  SuiteLock(const SuiteLock&) = delete;
  SuiteLock& operator=(const SuiteLock&) = delete;

 private:
  int descriptor_;
};

/// The directory of a suite, held open, and what happens to the files in it. One thread at a time.
///
/// Its lock orders the users of the database file: whoever opens the file holds it shared, whoever moves the
/// file away holds it exclusively. So no connection writes to a file that has been moved, and no journal of
/// one file is taken for that of another. Between those who hold it shared, SQLite's own locks decide.
class SuiteDirectory {
 public:
  enum class WhenMissing { make, refuse };

  /// Throws a SuiteRefusal when the directory is missing, cannot be made or may not be used.
  SuiteDirectory(SuiteLocation location, WhenMissing whenMissing);
  ~SuiteDirectory();
  SuiteDirectory(const SuiteDirectory&) = delete;
  SuiteDirectory& operator=(const SuiteDirectory&) = delete;

  const SuiteLocation& location() const { return location_; }

  /// Throws a SuiteRefusal when `deadline` passes first.
  SuiteLock lockShared(const Deadline& deadline) const;
  SuiteLock lockExclusively(const Deadline& deadline) const;

  /// Whether the database file is there. Throws a SuiteRefusal when what is there may not be used.
  bool hasFile() const;

  /// Whether this process may write the database file, as far as permissions go.
  bool mayWriteFile() const;

  /// Makes the database file, empty and with mode 0600, unless it is there. Throws a SuiteRefusal when it
  /// cannot.
  void makeFile() const;

  /// Moves the database file and what SQLite keeps beside it to a new name, with `moment` in it. The caller
  /// holds the exclusive lock. Throws a SuiteRefusal when it cannot.
  void setFileAside(Date moment) const;

 private:
  SuiteLock lock(int operation, const Deadline& deadline) const;

  SuiteLocation location_;
  int descriptor_;
};

}  // namespace foundation
