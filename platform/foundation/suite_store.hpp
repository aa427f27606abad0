#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tarno/foundation/suite_error.hpp"
#include "tarno/foundation/suite_location.hpp"
#include "tarno/foundation/user_defaults.hpp"

namespace tarno {

/// What opening a suite led to: a store, or one sentence (no full stop) that says why there is none.
struct SuiteOpening {
  std::shared_ptr<UserDefaults> store;
  std::string failure;
  std::string damage;  ///< why the file counts as empty; empty when it does not
};

/// Opens the suite `name`: reads its file, once. Writes nothing, waits for nobody and needs no permission to
/// write. A suite that nobody has saved yet is empty.
///
/// A directory or file that belongs to another user, is a symbolic link, is not of its kind, or can be
/// written by group or others is not opened, nor is a file that the system fails to read. A file that is not
/// a document of ours reads as nothing stored; the next save sets it aside under a dated name.
///
/// The store that comes back answers from the state that was read, with what was set since on top, until
/// synchronize(), which saves what was set, or reads again where nothing was. What was not synchronized when
/// the store is released is not saved. After a save that failed the file is as it was, and what was set waits
/// for the next synchronize(), unless it has a value that cannot be stored (see encodeDefaults()): then all
/// of it is dropped.
SuiteOpening openSuite(std::string_view name);

/// Stores `changes` in the suite `name`, all or none, beside what it holds; makes the folder and the file
/// where they are missing. Once this returns they are on the disk and every reader finds them; when it throws
/// SuiteError the suite holds what it held before. Waits at most 2 s for others who save. Any thread.
void saveToSuite(std::string_view name, const DefaultsValues& changes);

/// Does all that saveToSuite() does, but under another name than the file's: throws the SuiteError that it
/// would throw. Leaves the suite as it is and nothing else behind. Whether what is saved would survive a
/// power cut, which not every file system can promise.
bool rehearseSavingToSuite(std::string_view name, const DefaultsValues& changes);

}  // namespace tarno
