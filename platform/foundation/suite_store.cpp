#include "foundation/suite_store.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "foundation/defaults_table.hpp"
#include "foundation/suite_directory.hpp"

namespace foundation {
namespace {

constexpr std::chrono::milliseconds readerPatience{250};
constexpr std::chrono::milliseconds writerPatience{2000};

/// SQLite adds the name of the journal to it.
std::size_t longestPath() {
  return static_cast<std::size_t>(sqlite3_vfs_find(nullptr)->mxPathname) -
         std::string_view{"-journal"}.size();
}

DefaultsValues readValues(const SuiteDirectory& directory) {
  const Deadline deadline{readerPatience};
  const auto lock = directory.lockShared(deadline);
  DefaultsValues values;
  if (!directory.hasFile()) return values;
  // Ready to write, because a save that was cut off is undone by whoever comes next.
  const SqliteDatabase database{directory.location().file, SqliteDatabase::Access::readWrite, deadline};
  visitDefaults(database, [&](DefaultsRow row) {
    if (row.value) values.insert_or_assign(std::string{row.key}, *std::move(row.value));
  });
  return values;
}

/// Writes `values` in one transaction, or throws; false when the file is damaged. The caller holds a lock.
bool tryToWrite(const SuiteDirectory& directory, const DefaultsValues& values, const Deadline& deadline) {
  if (!directory.hasFile()) directory.makeFile();
  try {
    const SqliteDatabase database{directory.location().file, SqliteDatabase::Access::readWrite, deadline};
    writeDefaults(database, values);
    return true;
  } catch (const SqliteError& error) {
    // A file that we may write and that SQLite will not is marked, in its header, as written by some later
    // format.
    const bool isOfAnotherFormat = error.code() == SQLITE_READONLY && directory.mayWriteFile();
    if (error.isDamage() || isOfAnotherFormat) return false;
    throw;
  }
}

/// Writes `values` in one transaction, setting a damaged file aside first; throws when nothing was written.
void writeValues(const SuiteDirectory& directory, const DefaultsValues& values) {
  const Deadline deadline{writerPatience};
  {
    const auto lock = directory.lockShared(deadline);
    if (tryToWrite(directory, values, deadline)) return;
  }
  const auto lock = directory.lockExclusively(deadline);
  // Another process may have been quicker to set it aside.
  if (tryToWrite(directory, values, deadline)) return;
  directory.setFileAside(now());
  if (!tryToWrite(directory, values, deadline)) {
    throw SuiteRefusal{directory.location().file.string() + " is damaged as soon as it is made"};
  }
}

class SuiteStore final : public UserDefaults {
 public:
  explicit SuiteStore(SuiteLocation location)
      : directory_(std::move(location), SuiteDirectory::WhenMissing::make) {
    const auto& file = directory_.location().file;
    if (file.native().size() > longestPath())
      throw SuiteRefusal{file.string() + " is a longer path than SQLite takes"};
    directory_.hasFile();
  }

  ~SuiteStore() override { synchronizeValues(); }

  std::optional<DefaultsValue> object(std::string_view key) const override {
    if (const auto found = pending_.find(key); found != pending_.end()) return found->second;
    if (!stored_) read();
    const auto found = stored_->find(key);
    if (found == stored_->end()) return std::nullopt;
    return found->second;
  }

  void set(std::string_view key, DefaultsValue value) override {
    pending_.insert_or_assign(std::string{key}, std::move(value));
  }

  bool synchronize() override { return synchronizeValues(); }

 private:
  /// A state that cannot be read is kept as an empty one, so that all keys agree and the wait happens once.
  void read() const {
    stored_.emplace();
    try {
      *stored_ = readValues(directory_);
    } catch (const SqliteError&) {
    } catch (const SuiteRefusal&) {
    }
  }

  bool synchronizeValues() noexcept {
    stored_.reset();
    if (pending_.empty()) return true;
    const auto canBeStored = [](const auto& entry) { return isStorable(entry.second); };
    if (!std::all_of(pending_.begin(), pending_.end(), canBeStored)) return false;
    try {
      writeValues(directory_, pending_);
    } catch (const SqliteError&) {
      return false;
    } catch (const SuiteRefusal&) {
      return false;
    }
    pending_.clear();
    return true;
  }

  SuiteDirectory directory_;
  DefaultsValues pending_;
  mutable std::optional<DefaultsValues> stored_;
};

}  // namespace

SuiteOpening openSuite(std::string_view name) {
  auto location = suiteLocation(name);
  if (!location) return {nullptr, "there is no home for a suite called '" + std::string{name} + '\''};
  try {
    return {std::make_shared<SuiteStore>(*std::move(location)), ""};
  } catch (const SuiteRefusal& refusal) {
    return {nullptr, refusal.what()};
  }
}

}  // namespace foundation
