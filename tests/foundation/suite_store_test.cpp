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
#include <sstream>

#include "support/temporary_store.hpp"

using namespace foundation;

namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using Values = std::vector<std::pair<std::string, DefaultsValue>>;

constexpr const char* suite = "suite.of.test";

std::string readBytes(const fs::path& at) { return (std::stringstream{} << std::ifstream{at}.rdbuf()).str(); }
void writeBytes(const fs::path& path, const std::string& bytes) { std::ofstream{path} << bytes; }

/// Somebody else's connection to `file`, after it ran `sql`.
auto outsider(const fs::path& file, const std::string& sql) {
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  return std::unique_ptr<sqlite3, decltype(&sqlite3_close)>{database, sqlite3_close};
}

pid_t startProcess(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) work(), _exit(0);
  return child;
}

class SuiteStoreTest : public testing::Test {
 protected:
  SuiteStoreTest() { startOver(); }
  void startOver(const Values& values = {{"key", 1.0}}) const {
    fs::remove_all(directory);
    EXPECT_TRUE(save(values));
  }
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
  const DefaultsValue all[] = {
      "a\0é🔒"s,     Data{"\0\xFF{}"s}, Data{},    Data{std::string(16 << 20, 'x')}, 0.1, -3.0, INFINITY,
      earliestDate, latestDate,        Date{-1us}};
  Values values{{"", "under the empty key"s}, {"key", ""s}};
  for (const auto& value : all) values.emplace_back("key " + std::to_string(values.size()), value);
  waitpid(startProcess([&] { save(values); }), nullptr, 0);
  const auto store = UserDefaults::suite(suite);
  for (const auto& [key, value] : values) EXPECT_TRUE(store->object(key) == value) << key;
  EXPECT_FALSE(store->object("missing") || store->data("key 2") || store->string("key 3"));
  EXPECT_EQ(inspectSuite(suite).entries.size(), values.size());
}

TEST_F(SuiteStoreTest, AHandleKeepsItsStateUntilItSynchronizesAndWritesWhenReleased) {
  auto first = openSuite(suite).store;
  EXPECT_TRUE(first->object("key") && save({{"key", 2.0}}) && first->object("key") == DefaultsValue{1.0});
  EXPECT_TRUE(first->synchronize() && first->object("key") == DefaultsValue{2.0});
  first->set("key", 3.0);
  EXPECT_TRUE(first->object("key") == DefaultsValue{3.0} && load("key") == DefaultsValue{2.0});
  EXPECT_TRUE(first->synchronize() && load("key") == DefaultsValue{3.0} && save({{"key", 4.0}}));
  first->set("other", 5.0);
  first.reset();
  EXPECT_TRUE(load("key") == DefaultsValue{4.0} && load("other") == DefaultsValue{5.0});
}

TEST_F(SuiteStoreTest, TheLocationFollowsTheEnvironmentAndTakesPlainNamesOnly) {
  for (const auto& name : {""s, "."s, ".."s, "a/b"s, "/a"s, "a\0"s, std::string(256, 'x')})
    EXPECT_FALSE(suiteLocation(name) || openSuite(name).store) << name;
  setenv("HOME", "/h", 1);
  for (const auto& [xdg, at] : {std::pair{"/d", "/d"}, {"", "/h/.local/share"}, {"d", "/h/.local/share"}}) {
    setenv("XDG_DATA_HOME", xdg, 1);
    EXPECT_EQ(suiteLocation("s")->file, fs::path{at} / "s/defaults.sqlite");
  }
}

TEST_F(SuiteStoreTest, WhatIsMadeIsForTheOwnerAloneWhateverTheUmask) {
  for (const mode_t mask : {0u, 0277u, 022u}) {
    umask(mask);
    startOver();
    const auto report = inspectSuite(suite);
    EXPECT_TRUE(report.directory.mode == 0700 && report.file.mode == 0600 && report.file.owner == geteuid());
  }
}

TEST_F(SuiteStoreTest, WhatOthersCouldHaveTouchedIsRefused) {
  const auto toLink = [&](const auto& p) { fs::rename(p, home / "o"), fs::create_symlink(home / "o", p); };
  const std::pair<std::string_view, std::function<void()>> rows[] = {
      {"test can be written by group or others", [&] { chmod(directory.c_str(), 0720); }},
      {"test is a symbolic link", [&] { toLink(directory); }},
      {"test is not a directory", [&] { fs::remove_all(directory), writeBytes(directory, ""); }},
      {"test: Not a directory", [&] { fs::remove_all(home), writeBytes(home, ""); }},
      {"sqlite can be written by group or others", [&] { chmod(file.c_str(), 0602); }},
      {"sqlite is a symbolic link", [&] { toLink(file); }},
      {"sqlite is not a regular file", [&] { fs::remove(file), fs::create_directory(file); }},
      {"sqlite belongs to another user", [&] { EXPECT_EQ(chown(file.c_str(), 12345, 0), 0); }}};
  for (const auto& [failure, prepare] : rows) {
    if (failure.ends_with("another user") && geteuid() != 0) continue;
    fs::remove_all(home), startOver();
    prepare();
    const auto [store, reason] = openSuite(suite);
    EXPECT_TRUE(!store && reason.ends_with(failure)) << failure << ": " << reason;
    EXPECT_EQ(inspectSuite(suite).failure, reason);
  }
}

TEST_F(SuiteStoreTest, WaitingForALockEndsAndWhatCouldNotBeWrittenIsKept) {
  const auto store = openSuite(suite).store;
  auto lock = outsider(file, "BEGIN EXCLUSIVE");
  EXPECT_FALSE(store->object("key"));
  store->set("key", 2.0);
  EXPECT_FALSE(store->synchronize());
  EXPECT_EQ(inspectSuite(suite).failure, file.string() + " is locked by another program");
  lock.reset();
  EXPECT_TRUE(load("key") == DefaultsValue{1.0} && store->object("key") == DefaultsValue{2.0});
  EXPECT_TRUE(store->synchronize() && load("key") == DefaultsValue{2.0});
}

TEST_F(SuiteStoreTest, ADamagedFileReadsAsNothingAndIsSetAsideByTheNextSave) {
  const auto overwrite = [&](std::streamoff at, const std::string& bytes) {
    std::fstream{file, std::ios::in | std::ios::out}.seekp(at) << bytes;
  };
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"garbage", [&] { writeBytes(file, std::string(5000, '?')); }},
      {"all but the last page", [&] { fs::resize_file(file, fs::file_size(file) - 4096); }},
      {"a page in the middle overwritten", [&] { overwrite(8192, std::string(4096, '\0')); }},
      {"a write version to come", [&] { overwrite(18, "\x09"); }},
      {"a schema format to come", [&] { overwrite(47, "\x09"); }},
      {"no table of ours", [&] { outsider(file, "DROP TABLE defaults; CREATE TABLE other (a)"); }},
      {"a table alike", [&] { outsider(file, "ALTER TABLE defaults ADD COLUMN other"); }},
      {"a trigger", [&] { outsider(file, "CREATE TRIGGER t DELETE ON defaults BEGIN SELECT 1; END"); }}};
  const ClockOverride clock{std::chrono::sys_days{std::chrono::year{2026} / 11 / 24} + 22h + 15min};
  const std::string aside = file.string() + ".damaged-20261124T221500Z";
  Values values;
  for (char c = 'a'; c <= 'z'; ++c) values.emplace_back(std::string{c}, std::string(500, c));
  for (const auto& [what, damage] : rows) {
    SCOPED_TRACE(what);
    startOver(values);
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
    startOver();
    writeBytes(file, "garbage");
    const auto saveTwo = [] {
      const auto other = std::async(std::launch::async, save, Values{{std::to_string(getpid()), 1.0}});
      save({{std::to_string(getpid()) + " too", 1.0}});
    };
    for (const pid_t process : {startProcess(saveTwo), startProcess(saveTwo)}) waitpid(process, nullptr, 0);
    EXPECT_TRUE(inspectSuite(suite).entries.size() == 4 && filesOfSuite() == 2);
  }
}

TEST_F(SuiteStoreTest, AReaderNeverSeesHalfASaveNotEvenOfAKilledWriter) {
  ASSERT_TRUE(save({{"first", 0.0}, {"second", 0.0}}));
  const pid_t writer = startProcess([] {
    for (double number = 1;; ++number) save({{"first", number}, {"second", number}});
  });
  for (int reading = 0; reading < 200; ++reading) {
    const auto store = openSuite(suite).store;
    EXPECT_EQ(store->object("first"), store->object("second"));
  }
  kill(writer, SIGKILL), waitpid(writer, nullptr, 0);
  EXPECT_TRUE(load("first") && load("first") == load("second"));
}

TEST_F(SuiteStoreTest, ASaveThatIsKilledAfterItTouchedTheFileIsUndoneByTheNextUse) {
  const auto dieSaving = [&] {
    const auto database = outsider(file, "BEGIN IMMEDIATE; UPDATE defaults SET value = 2.0");
    sqlite3_db_cacheflush(database.get()), raise(SIGKILL);
  };
  waitpid(startProcess(dieSaving), nullptr, 0);
  EXPECT_NE(inspectSuite(suite).failure.find("journal of a save that was cut off"), std::string::npos);
  EXPECT_TRUE(load("key") == DefaultsValue{1.0} && !fs::exists(journal));
}

TEST_F(SuiteStoreTest, WhatThisStoreDoesNotWriteIsMissingAndWhatWouldNotReadBackIsNotWritten) {
  for (const char* row :
       {"'data', 'text'", "'string', x'00'", "'number', 1", "'date', 1.5", "'date', -62167219200000001",
        "'date', 253402300800000000", "'other', 1", "x'64617461', x'00'", "'data', zeroblob(16777217)"}) {
    outsider(file, "INSERT OR REPLACE INTO defaults VALUES ('bad', "s + row + ")");
    EXPECT_TRUE(!load("bad") && load("key")) << row;
    const auto entries = inspectSuite(suite).entries;
    EXPECT_TRUE(entries.at(0).type == "unreadable" && entries.at(1).type == "number") << row;
  }
  const DefaultsValue bad[] = {NAN, latestDate + 1us, earliestDate - 1us, std::string((16 << 20) + 1, 'x')};
  for (const auto& value : bad) EXPECT_FALSE(save({{"bad", value}}));
}

TEST_F(SuiteStoreTest, LookingMakesNothing) {
  outsider(file, "PRAGMA journal_mode = WAL");
  EXPECT_NE(inspectSuite(suite).failure.find("write-ahead"), std::string::npos);
  EXPECT_EQ(filesOfSuite(), 1);
  fs::remove_all(directory);
  EXPECT_TRUE(inspectSuite(suite).failure.empty() && fs::is_empty(home));
}

}  // namespace
