#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarno/foundation/file_descriptor.hpp"
#include "tarno/foundation/saver_queue.hpp"
#include "tarno/foundation/suite_location.hpp"

namespace tarno {

/// The folder of a suite, held open. Everything in it is reached through this one descriptor, so that what
/// was checked is what is used, even if the path changes meanwhile. For one thread at a time.
///
/// A folder or a file is refused if it belongs to another user, is a symbolic link, is of another type, or is
/// writable by group or others. Members throw SuiteError.
class SuiteFolder {
 public:
  SuiteFolder(SuiteFolder&&) = default;
  /// Unlocks the folder, even if a child process from fork() still has a copy of the descriptor.
  ~SuiteFolder();

  /// Opens the folder. Returns nothing if it does not exist.
  static std::optional<SuiteFolder> find(const SuiteLocation& location);

  /// Opens the folder, and first creates it and its missing parents with mode 0700, whatever the umask is.
  /// Adds the created folders to `made`, outermost first, even when it throws.
  static SuiteFolder findOrMake(const SuiteLocation& location, std::vector<std::filesystem::path>& made);

  /// Returns whether the path still leads to this folder.
  bool isInPlace() const;

  /// Tries to take the lock that keeps savers apart; it is held until this object is destroyed. Returns false
  /// if another saver has it or has waited longer. Call again to wait: savers get the lock in turn.
  bool tryLock();

  /// Returns the content of the file, or nothing if there is none. Needs no lock and never waits, because a
  /// save never modifies the file in place.
  std::optional<std::string> readFile() const;

  /// Replaces the file with a new one that holds `text`, and syncs the file and the folder. If `isDamaged`,
  /// the old file gets another name. At every moment readers find either the old file or the new one. If this
  /// throws, they find `old`, or no file if there was none. Throws for a text that is larger than readers
  /// accept. Needs the lock.
  void replaceFile(std::string_view text, const std::optional<std::string>& old, bool isDamaged) const;

  /// Does what replaceFile() does, but with a file of another name, which it always removes. Returns whether
  /// a save would survive a power cut; not every file system can sync a folder. Needs the lock.
  bool rehearse(std::string_view text) const;

 private:
  SuiteFolder(const SuiteLocation& location, FileDescriptor descriptor);

  void writeTemporary(std::string_view text) const;
  bool removeTemporary() const;
  void renameTemporary() const;
  std::string setAside(const std::string& name) const;
  void putBack(const std::optional<std::string>& old, const std::optional<std::string>& aside) const;
  bool synchronize() const;
  const FileDescriptor& lockedFile() const { return lockFile_ ? lockFile_ : descriptor_; }

  SuiteLocation location_;
  FileDescriptor descriptor_;
  FileDescriptor lockFile_;  ///< used where the folder itself cannot be locked
  std::optional<SaverQueue> queue_;
  bool isLocked_ = false;
};

}  // namespace tarno
