#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tarno/foundation/suite_error.hpp"
#include "tarno/foundation/suite_location.hpp"
#include "tarno/foundation/user_defaults.hpp"

namespace tarno {

/// The result of opening a suite: a store, or one sentence without a full stop that says why there is none.
struct SuiteOpening {
  std::shared_ptr<UserDefaults> store;
  std::string failure;
  std::string damage;  ///< why the file counts as empty; empty if it does not
};

/// Opens the suite `name` and reads its file once. Writes nothing, never waits, and needs no write
/// permission. A suite that was never saved is empty.
///
/// A folder or file is refused if it belongs to another user, is a symbolic link, is of another type, is
/// writable by group or others, or cannot be read. A file with other content counts as empty; the next save
/// sets it aside under a dated name.
///
/// The returned store answers from this reading, plus what was set since. synchronize() saves what was set,
/// or reads again if nothing was. Releasing the store without synchronize() loses what was set. After a
/// failed save the file is unchanged, and what was set is kept for the next synchronize(). If one of the
/// values cannot be stored (see encodeDefaults()), all of them are dropped instead.
SuiteOpening openSuite(std::string_view name);

/// Stores `changes` in the suite `name`, all or none of them, and keeps its other values. Creates the folder
/// and the file if they are missing. On return the changes are on the disk and visible to every reader. If it
/// throws SuiteError, the suite is unchanged. Waits at most 2 s for the lock. Any thread.
void saveToSuite(std::string_view name, const DefaultsValues& changes);

/// Tests whether saveToSuite() would work: takes the same steps with a file of another name, which it
/// removes, and throws what saveToSuite() would throw. Leaves the suite unchanged. Returns whether a save
/// would survive a power cut, which not every file system can promise.
bool rehearseSavingToSuite(std::string_view name, const DefaultsValues& changes);

}  // namespace tarno
