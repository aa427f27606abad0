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

std::string readBytes(const fs::path& path) {
  std::ifstream in{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{in}, {}};
}

void writeBytes(const fs::path& path, const std::string& bytes) { std::ofstream{path} << bytes; }

/// Somebody else's connection to `file`, after it ran `sql`.
auto outsider(const fs::path& file, const std::string& sql) {
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
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
  static auto load(const std::string& key) { return openSuite(suite).store->object(key); }
  auto filesOfSuite() const { return std::distance(fs::directory_iterator{directory}, {}); }

  const TemporaryStore temporary{};
  const fs::path home = temporary.folder(), directory = home / suite, file = directory / "defaults.sqlite";
  const fs::path journal = file.string() + "-journal";
};

TEST_F(SuiteStoreTest, ValuesOfEveryTypeReachAnotherProcess) {
  const Values values{
      {"", "the empty key"s},      {"text", "a\0é🔒"s},     {"no text", ""s},
      {"data", Data{"\0\xFF{}"s}}, {"no data", Data{}},    {"large", Data{std::string(largest, 'x')}},
      {"fraction", 0.1},           {"whole", -3.0},        {"infinity", INFINITY},
      {"earliest", earliestDate},  {"latest", latestDate}, {"before 1970", Date{-1us}}};
  ASSERT_TRUE(succeeds(startProcess([&] { return save(values); })));
  const auto store = UserDefaults::suite(suite);
  for (const auto& [key, value] : values) EXPECT_TRUE(store->object(key) == value) << key;
  EXPECT_FALSE(store->object("missing") || store->data("text") || store->string("data"));
  EXPECT_EQ(inspectSuite(suite).entries.size(), values.size());
}

TEST_F(SuiteStoreTest, AHandleKeepsItsStateUntilItSynchronizesAndWritesWhenReleased) {
  ASSERT_TRUE(save({{"key", 1.0}}));
  auto first = openSuite(suite).store;
  EXPECT_EQ(first->object("key"), DefaultsValue{1.0});
  ASSERT_TRUE(save({{"key", 2.0}}));
  EXPECT_EQ(first->object("key"), DefaultsValue{1.0});
  EXPECT_TRUE(first->synchronize() && first->object("key") == DefaultsValue{2.0});
  first->set("key", 3.0);
  EXPECT_TRUE(first->object("key") == DefaultsValue{3.0} && load("key") == DefaultsValue{2.0});
  first.reset();
  EXPECT_EQ(load("key"), DefaultsValue{3.0});
}

TEST_F(SuiteStoreTest, TheLocationFollowsTheEnvironmentAndTakesPlainNamesOnly) {
  const std::string homeBefore = getenv("HOME") != nullptr ? getenv("HOME") : "/";
  setenv("HOME", "/h", 1);
  for (const auto& [data, parent] :
       {std::pair{"/d", "/d"}, {"", "/h/.local/share"}, {"d", "/h/.local/share"}}) {
    setenv("XDG_DATA_HOME", data, 1);
    EXPECT_EQ(suiteLocation("s")->file, fs::path{parent} / "s/defaults.sqlite");
  }
  setenv("HOME", homeBefore.c_str(), 1);
  for (const auto& name : {""s, "."s, ".."s, "a/b"s, "/a"s, "a\0"s, std::string(256, 'x')})
    EXPECT_FALSE(suiteLocation(name) || openSuite(name).store) << name;
}

TEST_F(SuiteStoreTest, WhatIsMadeIsForTheOwnerAloneWhateverTheUmask) {
  for (const mode_t mask : {0u, 0277u, 022u}) {
    fs::remove_all(directory);
    umask(mask);
    EXPECT_TRUE(save({{"key", 1.0}}));
    const auto [location, madeDirectory, madeFile, failure, entries] = inspectSuite(suite);
    EXPECT_TRUE(madeDirectory.mode == 0700 && madeFile.mode == 0600 && madeFile.owner == geteuid()) << mask;
  }
}

TEST_F(SuiteStoreTest, WhatOthersCouldHaveTouchedIsRefused) {
  const fs::path other = home / "other";
  const auto replaceByLink = [&](const fs::path& path) {
    fs::rename(path, other), fs::create_symlink(other, path);
  };
  const auto giveAway = [](const fs::path& path) { EXPECT_EQ(chown(path.c_str(), 12345, 0), 0); };
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"test can be written by group or others", [&] { chmod(directory.c_str(), 0720); }},
      {"test is a symbolic link", [&] { replaceByLink(directory); }},
      {"test is not a directory", [&] { fs::remove_all(directory), writeBytes(directory, ""); }},
      {"test belongs to another user", [&] { giveAway(directory); }},
      {"sqlite can be written by group or others", [&] { chmod(file.c_str(), 0602); }},
      {"sqlite is a symbolic link", [&] { replaceByLink(file); }},
      {"sqlite is not a regular file", [&] { fs::remove(file), fs::create_directory(file); }},
      {"sqlite belongs to another user", [&] { giveAway(file); }},
      {"test: Not a directory", [&] { fs::remove_all(home), writeBytes(home, ""); }},
  };
  for (const auto& [failure, prepare] : rows) {
    if (std::string{failure}.ends_with("another user") && geteuid() != 0) continue;
    fs::remove_all(home);
    ASSERT_TRUE(save({{"key", 1.0}}));
    prepare();
    const auto [store, reason] = openSuite(suite);
    EXPECT_TRUE(!store && reason.ends_with(failure)) << failure << ": " << reason;
    EXPECT_EQ(inspectSuite(suite).failure, reason);
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
    EXPECT_EQ(inspectSuite(suite).failure, file.string() + " is locked by another program");
  }
  EXPECT_TRUE(load("key") == DefaultsValue{1.0} && store->object("key") == DefaultsValue{2.0});
  EXPECT_TRUE(store->synchronize() && load("key") == DefaultsValue{2.0});
}

TEST_F(SuiteStoreTest, ADamagedFileReadsAsNothingAndIsSetAsideByTheNextSave) {
  const auto create = [&](const char* sql) { fs::remove(file), outsider(file, sql); };
  const auto overwrite = [&](std::streamoff at, const std::string& bytes) {
    std::fstream{file, std::ios::in | std::ios::out}.seekp(at) << bytes;
  };
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"garbage", [&] { writeBytes(file, std::string(5000, '?')); }},
      {"two bytes", [&] { fs::resize_file(file, 2); }},
      {"all but the last page", [&] { fs::resize_file(file, fs::file_size(file) - 4096); }},
      {"the root page overwritten", [&] { overwrite(4096, std::string(4096, '?')); }},
      {"a page in the middle overwritten", [&] { overwrite(12288, std::string(4096, '\0')); }},
      {"a write version to come", [&] { overwrite(18, "\x09"); }},
      {"a schema format to come", [&] { overwrite(47, "\x09"); }},
      {"no table of ours", [&] { create("CREATE TABLE other (a)"); }},
      {"a table alike", [&] { create("CREATE TABLE defaults AS SELECT 'a' key, 'string' kind, 'x' value"); }},
      {"a trigger", [&] { outsider(file, "CREATE TRIGGER t DELETE ON defaults BEGIN SELECT 1; END"); }},
  };
  const ClockOverride clock{std::chrono::sys_days{std::chrono::year{2026} / 11 / 24} + 22h + 15min};
  const std::string aside = file.string() + ".damaged-20261124T221500Z";
  for (const auto& [what, damage] : rows) {
    SCOPED_TRACE(what);
    fs::remove_all(directory);
    Values values;
    for (char c = 'a'; c <= 'z'; ++c) values.emplace_back(std::string{c}, std::string(500, c));
    ASSERT_TRUE(save(values));
    damage();
    writeBytes(journal, "a stale journal");
    const std::string damaged = readBytes(file);
    EXPECT_EQ(load("a").has_value(), what == "a write version to come"s) << "which hinders no reader";
    EXPECT_TRUE(save({{"new", 1.0}}) && load("new") && !load("a") && !fs::exists(journal));

    writeBytes(file, "damaged once more");
    EXPECT_NE(inspectSuite(suite).failure.find("is damaged"), std::string::npos);
    EXPECT_TRUE(save({{"new", 2.0}}) && inspectSuite(suite).failure.empty());
    EXPECT_TRUE(readBytes(aside) == damaged && readBytes(aside + "-2") == "damaged once more");
  }
  fs::resize_file(file, 0);  // a store that has not begun; there is nothing to set aside
  EXPECT_TRUE(!load("new") && save({{"new", 3.0}}) && filesOfSuite() == 3);
}

TEST_F(SuiteStoreTest, AllWhoFindTheSameDamageSetItAsideOnceAndLoseNoSave) {
  for (int round = 0; round < 5; ++round) {
    fs::remove_all(directory);
    ASSERT_TRUE(save({{"key", 1.0}}));
    writeBytes(file, "garbage");
    const auto saveTwo = [] {
      auto other = std::async(std::launch::async, save, Values{{std::to_string(getpid()), 1.0}});
      return save({{std::to_string(getpid()) + " too", 1.0}}) && other.get();
    };
    for (const pid_t process : {startProcess(saveTwo), startProcess(saveTwo)}) EXPECT_TRUE(succeeds(process));
    EXPECT_EQ(inspectSuite(suite).entries.size(), 4u);
    EXPECT_EQ(filesOfSuite(), 2);
  }
}

TEST_F(SuiteStoreTest, AReaderNeverSeesHalfASaveNotEvenOfAKilledWriter) {
  ASSERT_TRUE(save({{"first", 0.0}, {"second", 0.0}}));
  for (int round = 0; round < 10; ++round) {
    const pid_t writer = startProcess([number = round * 1e6]() mutable {
      while (save({{"first", ++number}, {"second", number}})) continue;
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
  const std::string before = readBytes(file) + readBytes(journal);
  EXPECT_NE(inspectSuite(suite).failure.find("journal of a save that was cut off"), std::string::npos);
  EXPECT_TRUE(readBytes(file) + readBytes(journal) == before) << "looking changes nothing";
  EXPECT_TRUE(load("key") == DefaultsValue{"old"s} && !fs::exists(journal));
}

TEST_F(SuiteStoreTest, WhatThisStoreDoesNotWriteIsMissingAndWhatWouldNotReadBackIsNotWritten) {
  ASSERT_TRUE(save({{"good", "text"s}}));
  for (const char* row : {"'data', 'text'", "'string', x'00'", "'number', 1", "'number', '1'", "'date', 1.5",
                          "'date', '2026-11-24'", "'date', -62167219200000001", "'date', 253402300800000000",
                          "'other', 1", "x'64617461', x'00'", "'data', zeroblob(16777217)"}) {
    outsider(file, "INSERT OR REPLACE INTO defaults VALUES ('bad', "s + row + ")");
    EXPECT_TRUE(!load("bad") && load("good")) << row;
    const auto entries = inspectSuite(suite).entries;
    EXPECT_TRUE(entries.size() == 2 && entries[0].type == "unreadable" && entries[1].type == "string" &&
                entries[1].size == 4)
        << row;
  }
  for (const DefaultsValue& value : {DefaultsValue{std::nan("")},
                                     {latestDate + 1us},
                                     {earliestDate - 1us},
                                     {std::string(largest + 1, 'x')}})
    EXPECT_FALSE(save({{"bad", value}}));
}

TEST_F(SuiteStoreTest, LookingMakesNothing) {
  EXPECT_EQ(inspectSuite(suite).failure, "");
  EXPECT_TRUE(fs::is_empty(home));
  ASSERT_TRUE(save({{"key", 1.0}}));
  outsider(file, "PRAGMA journal_mode = WAL");
  EXPECT_NE(inspectSuite(suite).failure.find("write-ahead"), std::string::npos);
  EXPECT_EQ(filesOfSuite(), 1);
}

}  // namespace
}  // namespace foundation
