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
/// was looked at is what is used, whatever happens to the path meanwhile. One thread at a time.
///
/// A folder or a file that belongs to another user, is a symbolic link, is not of its kind or can be written
/// by group or others is not used. Members throw SuiteError.
class SuiteFolder {
 public:
  SuiteFolder(SuiteFolder&&) = default;
  /// Gives the lock back, even where a child process of fork() still holds a copy of the descriptor.
  ~SuiteFolder();

  /// Nothing when there is none.
  static std::optional<SuiteFolder> find(const SuiteLocation& location);

  /// Makes it, and what is missing above it, with mode 0700 whatever the umask; adds the folders that it made
  /// to `made`, the innermost last, also where it throws then.
  static SuiteFolder findOrMake(const SuiteLocation& location, std::vector<std::filesystem::path>& made);

  /// Whether the path still leads to this folder.
  bool isInPlace() const;

  /// Takes the lock that keeps those who save apart, until this object goes; false when another has it, or
  /// is to have it first. Those who try again take turns.
  bool tryLock();

  /// The content of the file, or nothing when there is none. Needs no lock and waits for nobody, because a
  /// save never writes into a file that has its name.
  std::optional<std::string> readFile() const;

  /// Puts a new file with `text` in the place of the old one, which gets another name when `isDamaged`; the
  /// file and its name are on the disk afterwards. When this throws, readers find `old` again, or no file
  /// where there is none. At every moment between they find the one or the other. Throws for a text that is
  /// larger than readers accept. Needs the lock.
  void replaceFile(std::string_view text, const std::optional<std::string>& old, bool isDamaged) const;

  /// Does what replaceFile() does, but under a name that means nothing, which it removes, also where it
  /// throws. Whether a save would survive a power cut: not every file system can sync a folder. Needs the
  /// lock.
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
  FileDescriptor lockFile_;  ///< where the folder cannot be locked
  std::optional<SaverQueue> queue_;
  bool isLocked_ = false;
};

}  // namespace tarno
