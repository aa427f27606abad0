#include "tarno/foundation/suite_store.hpp"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <utility>
#include <vector>

#include "tarno/foundation/coding_error.hpp"
#include "tarno/foundation/defaults_document.hpp"
#include "tarno/foundation/suite_folder.hpp"

namespace tarno {
namespace {

using namespace std::chrono;

/// How long a save waits for the lock in total.
constexpr milliseconds patience{2000};
constexpr milliseconds pause{2};  ///< between two attempts

struct Content {
  std::optional<std::string> text;  ///< of the file; nothing if there is none
  DefaultsValues values;
  std::optional<std::string> damage;
};

Content readContent(const SuiteFolder& folder) {
  Content content{.text = folder.readFile()};
  if (!content.text) return content;
  try {
    content.values = decodeDefaults(*content.text);
  } catch (const DecodingError& error) {
    content.damage = error.what();
  }
  return content;
}

Content readSuite(const SuiteLocation& location) {
  const auto folder = SuiteFolder::find(location);
  return folder ? readContent(*folder) : Content{};
}

/// Calls `work` with the locked folder. If somebody has removed or replaced the folder meanwhile, calls
/// `work` again with the folder that the path leads to now. Adds the folders that it created to `made`.
template <class Work>
void inLockedFolder(const SuiteLocation& location, std::vector<std::filesystem::path>& made, Work work) {
  const auto end = steady_clock::now() + patience;
  const auto isTime = [end] { return steady_clock::now() < end; };
  while (isTime()) {
    auto folder = SuiteFolder::findOrMake(location, made);
    bool isLocked = folder.tryLock();
    for (; !isLocked && isTime() && folder.isInPlace(); isLocked = folder.tryLock())
      std::this_thread::sleep_for(pause);
    if (!isLocked) continue;
    try {
      work(folder);
      if (folder.isInPlace()) return;
    } catch (const SuiteError&) {
      if (folder.isInPlace()) throw;
    }
  }
  throw SuiteError{SuiteError::Kind::busy, location.directory.string() + " is locked by another program"};
}

/// Adds `changes` to `content` and returns the text of the file. Throws EncodingError.
std::string apply(const DefaultsValues& changes, Content& content) {
  for (const auto& [key, value] : changes) content.values.insert_or_assign(key, value);
  return encodeDefaults(content.values);
}

/// Saves `changes` and returns all values of the suite. Throws SuiteError and EncodingError.
DefaultsValues save(const SuiteLocation& location, const DefaultsValues& changes) {
  DefaultsValues values;
  std::vector<std::filesystem::path> made;
  inLockedFolder(location, made, [&](const SuiteFolder& folder) {
    auto content = readContent(folder);
    const auto text = apply(changes, content);
    folder.replaceFile(text, content.text, content.damage.has_value());
    values = std::move(content.values);
  });
  return values;
}

/// Folders, outermost first. Those that are empty are removed when this object is destroyed.
struct PassingFolders {
  ~PassingFolders() {
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) rmdir(path->c_str());
  }
  std::vector<std::filesystem::path> paths;
};

/// Calls `work` and turns an EncodingError into a SuiteError.
template <class Work>
void withSuiteErrors(Work work) {
  try {
    work();
  } catch (const EncodingError& error) {
    throw SuiteError{SuiteError::Kind::value, error.what()};
  }
}

class SuiteStore final : public UserDefaults {
 public:
  SuiteStore(SuiteLocation location, DefaultsValues stored)
      : location_(std::move(location)), stored_(std::move(stored)) {}

  std::optional<DefaultsValue> object(std::string_view key) const override {
    if (const auto found = pending_.find(key); found != pending_.end()) return found->second;
    const auto found = stored_.find(key);
    if (found == stored_.end()) return std::nullopt;
    return found->second;
  }

  void set(std::string_view key, DefaultsValue value) override {
    pending_.insert_or_assign(std::string{key}, std::move(value));
  }

  bool synchronize() override {
    try {
      stored_ = pending_.empty() ? readSuite(location_).values : save(location_, pending_);
      pending_.clear();
      return true;
    } catch (const EncodingError&) {
      pending_.clear();  // saving a part of it would give an old record a new date
    } catch (const SuiteError&) {
      if (pending_.empty()) stored_.clear();  // what cannot be read counts as missing
    }
    return false;
  }

 private:
  SuiteLocation location_;
  DefaultsValues stored_;
  DefaultsValues pending_;
};

SuiteLocation locate(std::string_view name) {
  auto location = suiteLocation(name);
  if (!location)
    throw SuiteError{SuiteError::Kind::unusable,
                     "no folder is known for the store '" + std::string{name} + '\''};
  return *std::move(location);
}

}  // namespace

SuiteOpening openSuite(std::string_view name) {
  try {
    auto location = locate(name);
    auto content = readSuite(location);
    const auto damage = content.damage ? location.file.string() + " is damaged: " + *content.damage : "";
    return {std::make_shared<SuiteStore>(std::move(location), std::move(content.values)), "", damage};
  } catch (const SuiteError& error) {
    return {nullptr, error.what(), ""};
  }
}

void saveToSuite(std::string_view name, const DefaultsValues& changes) {
  withSuiteErrors([&] { save(locate(name), changes); });
}

bool rehearseSavingToSuite(std::string_view name, const DefaultsValues& changes) {
  PassingFolders made;
  bool lasts = false;
  withSuiteErrors([&] {
    inLockedFolder(locate(name), made.paths, [&](const SuiteFolder& folder) {
      auto content = readContent(folder);
      lasts = folder.rehearse(apply(changes, content));
    });
  });
  return lasts;
}

}  // namespace tarno
