#include "tarno/foundation/suite_store.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "support/system_calls.hpp"
#include "support/temporary_store.hpp"

// The system calls that read and write a store.
WRAP(int, openat, (int folder, const char* name, int flags, mode_t mode), (folder, name, flags, mode))
WRAP(int, fstat, (int file, struct stat* found), (file, found))
WRAP(int, lstat, (const char* path, struct stat* found), (path, found))
WRAP(ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count))
WRAP(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count))
WRAP(int, fsync, (int file), (file))
WRAP(int, flock, (int file, int operation), (file, operation))
WRAP(int, fchmod, (int file, mode_t mode), (file, mode))
WRAP(int, fchmodat, (int folder, const char* name, mode_t mode, int flags), (folder, name, mode, flags))
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode))
WRAP(int, unlinkat, (int folder, const char* name, int flags), (folder, name, flags))
WRAP(int, linkat, (int from, const char* name, int to, const char* other, int flags),
     (from, name, to, other, flags))
WRAP(int, renameat, (int from, const char* name, int to, const char* other), (from, name, to, other))
WRAP(int, renameat2, (int from, const char* name, int to, const char* other, unsigned flags),
     (from, name, to, other, flags))

using namespace tarno;

namespace {

namespace fs = std::filesystem;
using namespace std::literals;

constexpr const char* suite = "suite.of.test";
using Value = std::optional<DefaultsValue>;

void saveTwins(double number) { saveToSuite(suite, {{"key", number}, {"twin", number}}); }
void rehearse() { rehearseSavingToSuite(suite, {{"key", 2.0}}); }

Value load(std::string_view key) {
  const auto store = openSuite(suite).store;
  return store ? store->object(key) : std::nullopt;
}

std::optional<SuiteError> errorOf(const std::function<void()>& work) try {
  return work(), std::nullopt;
} catch (const SuiteError& error) {
  return error;
}

/// Returns the message with which `work` fails, or an empty text.
std::string failureOf(const std::function<void()>& work) {
  const auto error = errorOf(work);
  return error ? error->what() : "";
}

std::string readBytes(const fs::path& at) { return (std::stringstream{} << std::ifstream{at}.rdbuf()).str(); }
void writeBytes(const fs::path& path, std::string_view bytes) { std::ofstream{path} << bytes; }

/// Runs `work` in a child process. An exception kills it.
pid_t startProcess(const std::function<void()>& work) noexcept {
  const pid_t child = fork();
  if (child == 0) work(), _exit(0);
  return child;
}

class SuiteStoreTest : public testing::Test {
 protected:
  SuiteStoreTest() { startOver(); }
  void startOver() const { fs::remove_all(home), saveTwins(1); }
  auto countFiles() const { return std::distance(fs::directory_iterator{directory}, {}); }
  static void expectTwins(const Value& value) {
    EXPECT_EQ(load("key"), value);
    EXPECT_EQ(load("twin"), value);
  }
  /// Calls `test` with the numbers of the calls of a save, each time with a new store, until it returns
  /// false.
  void forEachCall(const std::function<bool(int number)>& test) const {
    int number = 0;
    for (bool isMade = true; isMade && number < 100; ++number) {
      SCOPED_TRACE(number);
      startOver();
      isMade = test(number);
    }
    EXPECT_TRUE(12 < number && number < 100) << number;
  }
  /// Saves 2 and runs `event` before a call. Returns why the save failed, and whether the call was reached.
  static std::pair<std::string, bool> saveDuring(int call, const std::function<int()>& event) {
    system_calls::intercept(call, event);
    auto failure = failureOf([] { saveTwins(2); });
    return {std::move(failure), system_calls::wasReached()};
  }

  /// Saves 2 in a process that is killed before a call. Returns what saveDuring() returns.
  static std::pair<std::string, bool> saveUntilKilled(int call) {
    int status = 0;
    waitpid(startProcess([=] { saveDuring(call, [] { return raise(SIGKILL); }); }), &status, 0);
    return {WIFSIGNALED(status) ? "killed" : "", WIFSIGNALED(status)};
  }

  const TemporaryStore temporary{};
  const fs::path home = temporary.path, directory = home / suite, file = directory / "defaults.json";
  const fs::path leftover = directory / ".defaults.json.new", moved = home / "moved";
};

TEST_F(SuiteStoreTest, ASaveOfAnySizeIsOnTheDiskWhenItReturns) {
  const std::string text(1 << 20, 'x'), largest(4 << 20, '\1');
  fs::remove_all(home);
  system_calls::made.clear();
  saveToSuite(suite, {{"key", text}});
  for (const auto* const calls : {"mkdir fchmodat openat fsync", "write fsync renameat fsync"})
    EXPECT_NE(system_calls::made.find(calls), std::string::npos) << system_calls::made;
  EXPECT_EQ(UserDefaults::suite(suite)->string("key"), text);
  const auto save = [&] { saveToSuite(suite, {{"a", largest}, {"b", largest}, {"c", largest}}); };
  EXPECT_EQ(failureOf(save), file.string() + " would be larger than 64 MiB");
  EXPECT_EQ(UserDefaults::suite(suite)->string("key"), text);
}

TEST_F(SuiteStoreTest, ASaveWaitsForAnotherSaversLockButNotForeverAndAReaderNever) {
  const int other = open(directory.c_str(), O_RDONLY | O_CLOEXEC);
  flock(other, LOCK_EX);
  EXPECT_EQ(failureOf([] { saveTwins(2); }), directory.string() + " is locked by another program");
  expectTwins(1.0);
  EXPECT_EQ(saveDuring(50, [&] { return close(other); }), std::pair(""s, true));
  expectTwins(2.0);
}

TEST_F(SuiteStoreTest, AChildProcessDoesNotKeepTheLockAndAStartedProgramInheritsNoFile) {
  const auto countInherited = [] {
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor) count += fcntl(descriptor, F_GETFD) == 0;
    return count;
  };
  forEachCall([&, before = countInherited()](int number) {
    pid_t child = -1;
    const auto [failure, isReached] = saveDuring(number, [&] {
      EXPECT_EQ(countInherited(), before);
      child = startProcess([] { pause(); });
      return 0;
    });
    EXPECT_EQ(failure + failureOf([] { saveTwins(3); }), "");
    if (child > 0) kill(child, SIGKILL), waitpid(child, nullptr, 0);
    return isReached;
  });
}

TEST_F(SuiteStoreTest, AFailureTellsAnObstacleFromAnErrorOfTheSystem) {
  const auto kind = [](int error) {
    system_calls::intercept(2, [error] { return error; });  // the call that locks the folder
    return errorOf([] { saveTwins(3); }).value().kind();
  };
  for (const int error : {EROFS, EACCES, EPERM, EISDIR})
    EXPECT_EQ(kind(error), SuiteError::Kind::unusable) << error;
  for (const int error : {EIO, ENOSPC, EDQUOT, ENOMEM})
    EXPECT_EQ(kind(error), SuiteError::Kind::inputOutput) << error;
}

TEST_F(SuiteStoreTest, AFileSystemNeedNotLockOrSyncFolders) {
  forEachCall([&](int number) {
    bool isOfFolder = false;
    const auto [failure, isReached] = saveDuring(number, [&] {
      isOfFolder =
          system_calls::made.ends_with("renameat fsync ") || system_calls::made.ends_with("fstat flock ");
      return isOfFolder ? EBADF : 0;
    });
    EXPECT_EQ(failure, "");
    expectTwins(2.0);
    return isReached;
  });
  saveDuring(2, [] { return EBADF; });
  EXPECT_TRUE(fs::exists(directory / ".defaults.json.lock"));
}

TEST_F(SuiteStoreTest, WhatOthersCouldHaveTouchedIsRefused) {
  const std::pair<std::string, std::function<void()>> rows[] = {
      {"test can be written by group or others", [&] { chmod(directory.c_str(), 0720); }},
      {"test can be written by group or others", [&] { chmod(directory.c_str(), 0702); }},
      {"test is a symbolic link", [&] { fs::remove_all(directory), fs::create_symlink(home, directory); }},
      {"test is not a folder", [&] { fs::remove_all(directory), writeBytes(directory, ""); }},
      {"test belongs to another user", [&] { EXPECT_EQ(chown(directory.c_str(), 12345, 0), 0); }},
      {"test: Not a directory", [&] { fs::remove_all(home), writeBytes(home, ""); }},
      {"json is not a regular file", [&] { fs::remove(file), mkfifo(file.c_str(), 0600); }},
      {"json is larger than 64 MiB", [&] { fs::resize_file(file, (64 << 20) + 1); }}};
  for (const auto& [failure, prepare] : rows) {
    if (failure.ends_with("another user") && geteuid() != 0) continue;
    SCOPED_TRACE(failure);
    startOver();
    prepare();
    const auto reason = openSuite(suite).failure;
    EXPECT_TRUE(reason.ends_with(failure)) << reason;
    EXPECT_EQ(failureOf([] { saveTwins(2); }), reason);
    EXPECT_EQ(failureOf(rehearse), reason);
  }
}

TEST_F(SuiteStoreTest, ADamagedFileIsSetAsideByTheNextSaveAndNotByReadingOrRehearsing) {
  const ClockOverride clock{Date{1'795'558'500s}};
  const std::string aside = file.string() + ".damaged-20261124T221500Z";
  for (const auto& [damage, name] :
       {std::pair{""s, aside}, {"[]"s, aside + "-2"}, {R"({"\u0000": x})"s, aside + "-3"}}) {
    writeBytes(file, damage);
    EXPECT_NE(openSuite(suite).damage, "");
    EXPECT_EQ(failureOf(rehearse), "");
    EXPECT_EQ(readBytes(file), damage);
    saveTwins(2);
    EXPECT_EQ(readBytes(name), damage);
  }
  EXPECT_EQ(countFiles(), 4);
}

TEST_F(SuiteStoreTest, ARehearsalMayFailInAnyCallAndLeavesNothingBehind) {
  for (const bool isFirst : {true, false})
    forEachCall([&](int number) {
      if (isFirst) fs::remove_all(home);
      bool mustFail = false;
      system_calls::intercept(number, [&] {
        for (const auto* const call : {"write ", "fsync ", "renameat "})
          mustFail = mustFail || system_calls::made.ends_with(call);
        return EIO;
      });
      EXPECT_TRUE(!failureOf(rehearse).empty() || !mustFail) << system_calls::made;
      EXPECT_EQ(fs::exists(home) ? countFiles() : 0, isFirst ? 0 : 1);
      return system_calls::wasReached();
    });
}

TEST_F(SuiteStoreTest, AReaderBesideFourSaversSeesWholeSavesAndNoSaveIsLost) {
  std::map<std::string, pid_t> savers;
  for (const auto& name : {"a"s, "b"s, "c"s, "d"s})
    savers[name] = startProcess([&] {
      for (double number = 1; number <= 30; ++number) {
        const auto save = [&] { saveToSuite(suite, {{"key", number}, {"twin", number}, {name, number}}); };
        // Three other savers can hold the lock for longer than a save waits.
        while (const auto error = errorOf(save))
          if (error->kind() != SuiteError::Kind::busy) throw *error;
      }
    });
  for (const auto& [name, saver] : savers) {
    while (waitpid(saver, nullptr, WNOHANG) == 0) {
      const auto store = openSuite(suite).store;
      ASSERT_EQ(store->object("key"), store->object("twin"));
    }
    EXPECT_EQ(load(name), DefaultsValue{30.0});
  }
  EXPECT_EQ(countFiles(), 1);
}

TEST_F(SuiteStoreTest, ASaveThatIsKilledOrFailsInAnyCallLeavesTheOldOrTheNewStatus) {
  const std::tuple<const char*, std::function<void()>, Value, int> beginnings[] = {
      {"nothing", [&] { fs::remove_all(home); }, {}, 1},
      {"a file", [] {}, 1.0, 1},
      {"a damaged file", [&] { writeBytes(file, "damaged"); }, {}, 2},
      {"a link left over", [&] { fs::create_symlink(moved, leftover); }, 1.0, 1},
      {"a folder left over", [&] { fs::create_directories(leftover / "full"); }, 1.0, 2}};
  for (const auto& [name, prepare, old, files] : beginnings)
    for (const bool isKilled : {true, false}) {
      SCOPED_TRACE(name + (isKilled ? ", killed"s : ", failed"s));
      forEachCall([&, &prepare = prepare, &old = old, &files = files](int number) {
        prepare();
        const bool wasLeft = fs::exists(fs::symlink_status(leftover));
        const auto before = readBytes(file);
        const auto [failure, isReached] =
            isKilled ? saveUntilKilled(number) : saveDuring(number, [] { return EIO; });
        EXPECT_TRUE(isKilled || wasLeft || !fs::exists(leftover));
        const bool isNew = failure.empty() || (isKilled && load("key") == DefaultsValue{2.0});
        expectTwins(isNew ? 2.0 : old);
        EXPECT_TRUE(isNew || readBytes(file) == before);
        saveTwins(3);
        expectTwins(3.0);
        const auto more = countFiles() - files;  // a killed saver may leave a damaged file under two names
        EXPECT_TRUE(more == 0 || (more == 1 && isKilled && before == "damaged")) << more;
        EXPECT_FALSE(fs::exists(moved));
        return isReached;
      });
    }
}

TEST_F(SuiteStoreTest, AFolderThatIsSwappedDuringASaveIsFoundAgainOrNotUsed) {
  const std::pair<std::function<void()>, bool> rows[] = {
      {[&] { mkdir(directory.c_str(), 0700); }, true},
      {[&] { fs::create_directory_symlink(moved, directory); }, false}};
  for (const auto& row : rows)
    forEachCall([&](int number) {
      bool isOver = false;  // after the last check, the save only unlocks
      const auto [failure, isReached] = saveDuring(number, [&] {
        isOver = system_calls::made.ends_with("lstat flock ");
        fs::rename(directory, moved);
        return row.first(), 0;
      });
      if (isOver) return false;
      EXPECT_EQ(failure.empty(), row.second || !isReached);
      expectTwins(failure.empty() ? Value{2.0} : Value{});
      return isReached;
    });
}

}  // namespace
