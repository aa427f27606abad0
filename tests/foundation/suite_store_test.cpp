#include "foundation/suite_store.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <future>

#include "temporary_store.hpp"

namespace foundation {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::string_literals;
using Values = std::vector<std::pair<std::string, DefaultsValue>>;

constexpr const char* suite = "suite.of.test";
constexpr std::size_t largest = std::size_t{16} << 20;
const Date moment = std::chrono::sys_days{std::chrono::year{2026} / 11 / 24} + 22h + 15min;

std::string readBytes(const fs::path& path) {
  std::ifstream in{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{in}, {}};
}

void writeBytes(const fs::path& path, const std::string& bytes) { std::ofstream{path} << bytes; }

void overwrite(const fs::path& path, std::streamoff at, const std::string& bytes) {
  std::fstream{path, std::ios::in | std::ios::out}.seekp(at) << bytes;
}

mode_t modeOf(const fs::path& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 ? found.st_mode & 07777 : 0;
}

/// Somebody else's connection to `file`, after it ran `sql`.
auto outsider(const fs::path& file, const std::string& sql) {
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(database);
  return std::unique_ptr<sqlite3, decltype(&sqlite3_close)>{database, sqlite3_close};
}

pid_t startProcess(const std::function<bool()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  return child;
}

bool succeeds(pid_t child) {
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

class SuiteStoreTest : public testing::Test {
 protected:
  static bool save(const Values& values) {
    const auto store = openSuite(suite).store;
    for (const auto& [key, value] : values) store->set(key, value);
    return store->synchronize();
  }
  static std::optional<DefaultsValue> load(const std::string& key) {
    return openSuite(suite).store->object(key);
  }
  auto filesOfSuite() const { return std::distance(fs::directory_iterator{directory}, {}); }

  const TemporaryStore temporary{};
  const fs::path home = temporary.folder(), directory = home / suite, file = directory / "defaults.sqlite";
};

TEST_F(SuiteStoreTest, ValuesOfEveryTypeReachAnotherProcess) {
  const std::string text = "a\0é\xF0\x9F\x94\x92"s;
  const Data bytes{"\0\xFF{}"s}, large{std::string(largest, 'x')};
  const DefaultsValue all[] = {text, ""s,      bytes,        Data{},     large,     0.1,
                               -3.0, INFINITY, earliestDate, latestDate, Date{-1us}};
  Values values{{"", "under the empty key"s}};
  for (const auto& value : all) values.emplace_back("key " + std::to_string(values.size()), value);
  ASSERT_TRUE(succeeds(startProcess([&] { return save(values); })));
  const auto store = UserDefaults::suite(suite);
  for (const auto& [key, value] : values) EXPECT_TRUE(store->object(key) == value) << key;
  EXPECT_FALSE(store->object("missing") || store->data("key 1") || store->string("key 3"));
  EXPECT_EQ(inspectSuite(suite).entries.size(), values.size());
}

TEST_F(SuiteStoreTest, AHandleKeepsItsStateUntilItSynchronizesAndWritesWhenReleased) {
  ASSERT_TRUE(save({{"key", 1.0}}));
  auto first = openSuite(suite).store;
  EXPECT_EQ(first->object("key"), DefaultsValue{1.0});
  ASSERT_TRUE(save({{"key", 2.0}}));
  EXPECT_EQ(first->object("key"), DefaultsValue{1.0});
  EXPECT_TRUE(first->synchronize());
  EXPECT_EQ(first->object("key"), DefaultsValue{2.0});
  first->set("key", 3.0);
  EXPECT_EQ(first->object("key"), DefaultsValue{3.0});
  EXPECT_EQ(load("key"), DefaultsValue{2.0});
  first.reset();
  EXPECT_EQ(load("key"), DefaultsValue{3.0});
}

TEST_F(SuiteStoreTest, TheLocationFollowsTheEnvironmentAndTakesPlainNamesOnly) {
  const std::string homeBefore = getenv("HOME") != nullptr ? getenv("HOME") : "/";
  setenv("HOME", "/h", 1);
  for (const auto& [data, expected] :
       {std::pair{"/d", "/d/s"}, {"", "/h/.local/share/s"}, {"d", "/h/.local/share/s"}}) {
    setenv("XDG_DATA_HOME", data, 1);
    EXPECT_EQ(suiteLocation("s")->file, fs::path{expected} / "defaults.sqlite");
  }
  setenv("HOME", homeBefore.c_str(), 1);
  for (const auto& name : {""s, "."s, ".."s, "a/b"s, "/a"s, "a\0"s, std::string(256, 'x')}) {
    EXPECT_FALSE(suiteLocation(name) || openSuite(name).store) << name;
  }
}

TEST_F(SuiteStoreTest, WhatIsMadeIsForTheOwnerAloneWhateverTheUmask) {
  for (const mode_t mask : {0u, 0277u}) {
    fs::remove_all(directory);
    umask(mask);
    EXPECT_TRUE(save({{"key", 1.0}}));
    EXPECT_EQ(modeOf(directory), 0700u);
    EXPECT_EQ(modeOf(file), 0600u);
  }
  umask(022);
}

TEST_F(SuiteStoreTest, WhatOthersCouldHaveTouchedIsRefused) {
  const fs::path other = home / "other";
  const auto replaceByLink = [&](const fs::path& path) {
    fs::rename(path, other), fs::create_symlink(other, path);
  };
  const auto giveAway = [](const fs::path& path) { EXPECT_EQ(chown(path.c_str(), 12345, 0), 0); };
  const std::pair<std::string, std::function<void()>> rows[] = {
      {directory.string() + " can be written by group or others", [&] { chmod(directory.c_str(), 0720); }},
      {directory.string() + " is a symbolic link", [&] { replaceByLink(directory); }},
      {directory.string() + " is not a directory",
       [&] { fs::rename(file, other), fs::remove(directory), fs::rename(other, directory); }},
      {directory.string() + " belongs to another user", [&] { giveAway(directory); }},
      {file.string() + " can be written by group or others", [&] { chmod(file.c_str(), 0602); }},
      {file.string() + " is a symbolic link", [&] { replaceByLink(file); }},
      {file.string() + " is a symbolic link", [&] { fs::remove(file), fs::create_symlink("nowhere", file); }},
      {file.string() + " is not a regular file", [&] { fs::remove(file), fs::create_directory(file); }},
      {file.string() + " belongs to another user", [&] { giveAway(file); }},
      {"cannot open " + directory.string() + ": Not a directory",
       [&] { fs::remove_all(home), writeBytes(home, ""); }},
  };
  for (const auto& [failure, prepare] : rows) {
    if (failure.ends_with("another user") && geteuid() != 0) continue;
    fs::remove_all(home);
    fs::create_directory(home);
    ASSERT_TRUE(save({{"key", 1.0}}));
    prepare();
    EXPECT_EQ(openSuite(suite).store, nullptr);
    EXPECT_EQ(openSuite(suite).failure, failure);
    EXPECT_EQ(inspectSuite(suite).failure, failure);
  }
}

TEST_F(SuiteStoreTest, WaitingForALockEndsAndWhatCouldNotBeWrittenIsKept) {
  ASSERT_TRUE(save({{"key", 1.0}}));
  const auto store = openSuite(suite).store;
  {
    const auto lock = outsider(file, "BEGIN EXCLUSIVE");
    EXPECT_FALSE(store->object("key"));
    store->set("key", 2.0);
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(store->object("key"), DefaultsValue{2.0});
    EXPECT_EQ(inspectSuite(suite).failure, file.string() + " is locked by another program");
  }
  EXPECT_EQ(load("key"), DefaultsValue{1.0});
  chmod(directory.c_str(), 0500);
  EXPECT_EQ(store->synchronize(), geteuid() == 0) << "only root writes into a directory that is read-only";
  chmod(directory.c_str(), 0700);
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(load("key"), DefaultsValue{2.0});
}

TEST_F(SuiteStoreTest, ADamagedFileReadsAsNothingAndIsSetAsideByTheNextSave) {
  const auto create = [&](const char* sql) { fs::remove(file), outsider(file, sql); };
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"garbage", [&] { writeBytes(file, std::string(5000, '?')); }},
      {"two bytes", [&] { fs::resize_file(file, 2); }},
      {"half a header", [&] { fs::resize_file(file, 50); }},
      {"one page", [&] { fs::resize_file(file, 4096); }},
      {"all but the last page", [&] { fs::resize_file(file, fs::file_size(file) - 4096); }},
      {"the root page overwritten", [&] { overwrite(file, 4096, std::string(4096, '?')); }},
      {"a page in the middle overwritten", [&] { overwrite(file, 12288, std::string(4096, '\0')); }},
      {"a write version to come", [&] { overwrite(file, 18, "\x09"); }},
      {"a schema format to come", [&] { overwrite(file, 47, "\x09"); }},
      {"no table of ours", [&] { create("CREATE TABLE other (a)"); }},
      {"a table alike", [&] { create("CREATE TABLE defaults AS SELECT 'a' key, 'string' kind, 'x' value"); }},
      {"a trigger", [&] { outsider(file, "CREATE TRIGGER t DELETE ON defaults BEGIN SELECT 1; END"); }},
  };
  const ClockOverride clock{moment};
  const std::string aside = file.string() + ".damaged-20261124T221500Z";
  for (const auto& [what, damage] : rows) {
    SCOPED_TRACE(what);
    fs::remove_all(directory);
    Values values;
    for (char c = 'a'; c <= 'z'; ++c) values.emplace_back(std::string{c}, std::string(500, c));
    ASSERT_TRUE(save(values));
    damage();
    writeBytes(file.string() + "-journal", "a stale journal");
    const std::string damaged = readBytes(file);
    EXPECT_EQ(load("a").has_value(), what == "a write version to come"s) << "which hinders no reader";
    EXPECT_TRUE(save({{"new", 1.0}}));
    EXPECT_EQ(load("new"), DefaultsValue{1.0});
    EXPECT_FALSE(load("a") || fs::exists(file.string() + "-journal"));

    writeBytes(file, "damaged once more");
    EXPECT_NE(inspectSuite(suite).failure.find("is damaged"), std::string::npos);
    EXPECT_TRUE(save({{"new", 2.0}}));
    EXPECT_EQ(readBytes(aside + "-2"), "damaged once more");
    EXPECT_TRUE(readBytes(aside) == damaged && inspectSuite(suite).failure.empty());
  }
  fs::remove_all(directory);
  ASSERT_TRUE(save({{"key", 1.0}}));
  fs::resize_file(file, 0);
  EXPECT_FALSE(load("key"));
  EXPECT_TRUE(save({{"key", 2.0}}));
  EXPECT_EQ(filesOfSuite(), 1) << "an empty file is a store that has not begun, there is nothing to keep";
}

TEST_F(SuiteStoreTest, AllWhoFindTheSameDamageSetItAsideOnceAndLoseNoSave) {
  for (int round = 0; round < 5; ++round) {
    fs::remove_all(directory);
    ASSERT_TRUE(save({{"key", 1.0}}));
    writeBytes(file, "garbage");
    const auto saveAll = [] {
      auto other = std::async(std::launch::async, save, Values{{std::to_string(getpid()), 1.0}});
      return save({{std::to_string(getpid()) + " too", 1.0}}) && other.get();
    };
    const pid_t processes[] = {startProcess(saveAll), startProcess(saveAll)};
    for (const pid_t process : processes) EXPECT_TRUE(succeeds(process));
    EXPECT_EQ(inspectSuite(suite).entries.size(), 4u);
    EXPECT_EQ(filesOfSuite(), 2);
  }
}

TEST_F(SuiteStoreTest, AReaderNeverSeesHalfASaveNotEvenOfAKilledWriter) {
  ASSERT_TRUE(save({{"first", 0.0}, {"second", 0.0}}));
  for (int round = 0; round < 10; ++round) {
    const pid_t writer = startProcess([&] {
      for (double number = round * 1e6;; ++number) save({{"first", number}, {"second", number}});
      return true;
    });
    for (int reading = 0; reading < 20; ++reading) {
      const auto store = openSuite(suite).store;
      EXPECT_EQ(store->object("first"), store->object("second"));
    }
    kill(writer, SIGKILL);
    EXPECT_FALSE(succeeds(writer));
    EXPECT_TRUE(load("first") && load("first") == load("second"));
  }
}

TEST_F(SuiteStoreTest, ASaveThatIsKilledAfterItTouchedTheFileIsUndoneByTheNextUse) {
  ASSERT_TRUE(save({{"key", "old"s}}));
  EXPECT_FALSE(succeeds(startProcess([&] {
    const auto database = outsider(file, "BEGIN IMMEDIATE; UPDATE defaults SET value = 'new'");
    sqlite3_db_cacheflush(database.get());
    return raise(SIGKILL) == 0;
  })));
  const fs::path journal = file.string() + "-journal";
  const std::string before = readBytes(file) + readBytes(journal);
  EXPECT_NE(inspectSuite(suite).failure.find("journal of a save that was cut off"), std::string::npos);
  EXPECT_TRUE(readBytes(file) + readBytes(journal) == before) << "looking changes nothing";
  EXPECT_EQ(load("key"), DefaultsValue{"old"s});
  EXPECT_FALSE(fs::exists(journal));
}

TEST_F(SuiteStoreTest, WhatThisStoreDoesNotWriteIsMissingAndWhatWouldNotReadBackIsNotWritten) {
  ASSERT_TRUE(save({{"good", "text"s}}));
  for (const char* row : {"'data', 'text'", "'string', x'00'", "'number', 1", "'number', '1'", "'date', 1.5",
                          "'date', '2026-11-24'", "'date', -62167219200000001", "'date', 253402300800000000",
                          "'other', 1", "x'64617461', x'00'", "'data', zeroblob(16777217)"}) {
    SCOPED_TRACE(row);
    outsider(file, "INSERT OR REPLACE INTO defaults VALUES ('bad', "s + row + ")");
    EXPECT_FALSE(load("bad") || !load("good"));
    const auto entries = inspectSuite(suite).entries;
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].key + ", " + entries[0].type, "bad, unreadable");
    EXPECT_EQ(entries[1].type + ", " + std::to_string(entries[1].size), "string, 4");
  }
  for (const DefaultsValue& value : std::initializer_list<DefaultsValue>{
           std::nan(""), latestDate + 1us, earliestDate - 1us, std::string(largest + 1, 'x')})
    EXPECT_FALSE(save({{"bad", value}}));
}

TEST_F(SuiteStoreTest, LookingMakesNothing) {
  EXPECT_EQ(inspectSuite(suite).failure, "");
  EXPECT_TRUE(fs::is_empty(home));
  ASSERT_TRUE(save({{"key", 1.0}}));
  const auto report = inspectSuite(suite);
  EXPECT_TRUE(report.directory.mode == 0700 && report.file.mode == 0600 && report.file.owner == geteuid());
  outsider(file, "PRAGMA journal_mode = WAL");
  EXPECT_NE(inspectSuite(suite).failure.find("write-ahead"), std::string::npos);
  EXPECT_EQ(filesOfSuite(), 1);
}

}  // namespace
}  // namespace foundation
