#include "foundation/suite_store.hpp"

#include <pwd.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cmath>

#include "support/suite_fixture.hpp"

using namespace foundation;

namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using namespace std::chrono;

class SuiteStoreTest : public SuiteTest {};

TEST_F(SuiteStoreTest, TheFileIsReadableForPeopleAndHoldsValuesOfEveryType) {
  const DefaultsValues values{{"bytes", Data{"\xFF\0"s}},
                              {"date", Date{-1us}},
                              {"first", Date{sys_days{1y / January / 1}}},
                              {"last", Date{sys_days{10000y / January / 1}} - 1us},
                              {"key", 0.1},
                              {"long", Data{std::string(4 << 20, 'x')}},
                              {"odd", "a\xFF!"s},
                              {"record", Data{"{\"é\": \"🔒\"}"}},
                              {"", "a\0\n"s}};
  waitpid(startProcess([&] { save(values); }), nullptr, 0);
  const auto store = UserDefaults::suite(name);
  for (const auto& [key, value] : values) EXPECT_TRUE(store->object(key) == value) << key;
  EXPECT_FALSE(store->object("missing"));
  EXPECT_FALSE(store->data("odd"));
  EXPECT_FALSE(store->string("record"));

  save({{"long", Data{}}});
  EXPECT_EQ(readBytes(file), R"({
  "": {"type": "string", "value": "a\u0000\n"},
  "bytes": {"type": "data", "base64": "/wA="},
  "date": {"type": "date", "value": "1969-12-31T23:59:59.999999Z"},
  "first": {"type": "date", "value": "0001-01-01T00:00:00.000000Z"},
  "key": {"type": "number", "value": 0.1},
  "last": {"type": "date", "value": "9999-12-31T23:59:59.999999Z"},
  "long": {"type": "data", "value": ""},
  "odd": {"type": "string", "base64": "Yf8h"},
  "record": {"type": "data", "value": "{\"é\": \"🔒\"}"}
}
)");
}

TEST_F(SuiteStoreTest, OtherProgramsMayWriteTheFile) {
  const std::pair<const char*, std::optional<DefaultsValue>> rows[] = {
      {R"({"value": 3, "type": "number"})", 3.0},
      {R"({"type": "date", "value": "1970-01-01T01:00:00.5+01:00"})", Date{500ms}},
      {R"({"type": "date", "value": "1970-01-01T00:00:01Z"})", Date{1s}},
      {R"({"type": "data", "base64": "YQ=="})", Data{"a"}},
      {R"({"type": "data", "base64": "YR=="})", {}},
      {R"({"type": "data", "base64": "YQ"})", {}},
      {R"({"type": "data", "base64": "Y*=="})", {}},
      {R"({"type": "data", "value": 1})", {}},
      {R"({"type": "string", "value": null})", {}},
      {R"({"type": "date", "value": 1})", {}},
      {R"({"type": "date", "value": "0000-12-31T23:59:59Z"})", {}},
      {R"({"type": "number", "value": "1"})", {}},
      {R"({"type": "other", "value": 1})", {}},
      {R"({"type": "number", "value": 1, "more": 1})", 1.0},
      {R"({"value": "a"})", {}},
      {R"("text")", {}}};
  for (const auto& [value, expected] : rows) {
    writeBytes(file, R"({"first": {"type": "number", "value": 1}, "key": )" + std::string{value} + "}");
    EXPECT_TRUE(load("key") == expected) << value;
    EXPECT_EQ(load("first").has_value(), expected.has_value()) << value;
  }
}

TEST_F(SuiteStoreTest, AHandleAnswersFromOneStateUntilItSynchronizes) {
  auto handle = openSuite(name).store;
  save({{"key", 2.0}});
  EXPECT_EQ(handle->object("key"), DefaultsValue{1.0});
  EXPECT_TRUE(handle->synchronize());
  EXPECT_EQ(handle->object("key"), DefaultsValue{2.0});

  save({{"other", 1.0}});
  handle->set("key", 3.0);
  EXPECT_EQ(handle->object("key"), DefaultsValue{3.0});
  EXPECT_EQ(load("key"), DefaultsValue{2.0});
  EXPECT_TRUE(handle->synchronize());
  EXPECT_EQ(load("key"), DefaultsValue{3.0});
  EXPECT_EQ(handle->object("other"), DefaultsValue{1.0});

  handle->set("key", 4.0);
  handle.reset();
  EXPECT_EQ(load("key"), DefaultsValue{3.0});
}

TEST_F(SuiteStoreTest, WhatCannotBeStoredIsRefusedOnceAndTheRestIsSaved) {
  const DefaultsValues bad[] = {{{"bad", NAN}},
                                {{"bad", INFINITY}},
                                {{"bad", Date{sys_days{10000y / January / 1}}}},
                                {{"bad", Date{sys_days{1y / January / 1}} - 1us}},
                                {{"bad", std::string((4 << 20) + 1, 'x')}},
                                {{"\xFF", 1.0}}};
  for (const auto& values : bad) {
    const auto handle = openSuite(name).store;
    for (const auto& [key, value] : values) handle->set(key, value);
    handle->set("key", 2.0);
    EXPECT_FALSE(handle->synchronize());
    EXPECT_EQ(load("key"), DefaultsValue{1.0});
    EXPECT_TRUE(handle->synchronize());
    EXPECT_EQ(load("key"), DefaultsValue{2.0});
    EXPECT_NE(failureOf([&] { save(values); }), "");
    startOver();
  }
}

TEST_F(SuiteStoreTest, AnotherSaversLockStopsSavingForTwoSecondsAndReadingNotAtAll) {
  const int other = open(directory.c_str(), O_RDONLY | O_CLOEXEC);
  flock(other, LOCK_EX);
  const auto handle = openSuite(name).store;
  EXPECT_EQ(handle->object("key"), DefaultsValue{1.0});
  handle->set("key", 2.0);
  const auto start = steady_clock::now();
  EXPECT_FALSE(handle->synchronize());
  EXPECT_GE(steady_clock::now() - start, 1900ms);
  EXPECT_EQ(failureOf([] { rehearseSavingToSuite(name); }),
            directory.string() + " is locked by another program");
  EXPECT_EQ(load("key"), DefaultsValue{1.0});
  close(other);
  EXPECT_TRUE(handle->synchronize());
  EXPECT_EQ(load("key"), DefaultsValue{2.0});
}

TEST_F(SuiteStoreTest, TheLocationFollowsTheEnvironmentAndTakesPlainNamesOnly) {
  for (const auto& wrong : {""s, "."s, ".."s, "a/b"s, "/a"s, "a\0"s, std::string(256, 'x')}) {
    EXPECT_FALSE(suiteLocation(wrong)) << wrong;
    EXPECT_FALSE(openSuite(wrong).store) << wrong;
  }
  const std::string ofUser = getpwuid(geteuid())->pw_dir + "/.local/share"s;
  const std::tuple<const char*, const char*, std::string> rows[] = {
      {"/d", "/h", "/d"}, {"", "/h", "/h/.local/share"}, {"d", "/h", "/h/.local/share"}, {"d", "h", ofUser}};
  for (const auto& [data, homeFolder, expected] : rows) {
    setenv("XDG_DATA_HOME", data, 1), setenv("HOME", homeFolder, 1);
    EXPECT_EQ(suiteLocation("s")->file, expected + "/s/defaults.json");
    EXPECT_EQ(suiteLocation("s")->directory, expected + "/s");
  }
}

TEST_F(SuiteStoreTest, WhatIsMadeIsForTheOwnerAloneWhateverTheUmask) {
  for (const mode_t mask : {0u, 022u, 0777u}) {
    const mode_t before = umask(mask);
    startOver();
    umask(before);
    struct stat found {};
    for (const auto& [path, mode] :
         {std::pair{home, S_IFDIR | 0700}, {directory, S_IFDIR | 0700}, {file, S_IFREG | 0600}}) {
      EXPECT_EQ(lstat(path.c_str(), &found), 0);
      EXPECT_EQ(found.st_mode, static_cast<mode_t>(mode)) << path << mask;
    }
  }
}

TEST_F(SuiteStoreTest, WhatOthersCouldHaveTouchedIsRefused) {
  const auto toLink = [&](const auto& p) { fs::rename(p, home / "o"), fs::create_symlink(home / "o", p); };
  const auto chownOf = [](const auto& p) { EXPECT_EQ(chown(p.c_str(), 12345, 0), 0); };
  const std::pair<std::string, std::function<void()>> rows[] = {
      {"test can be written by group or others", [&] { chmod(directory.c_str(), 0720); }},
      {"test can be written by group or others", [&] { chmod(directory.c_str(), 0702); }},
      {"test is a symbolic link", [&] { toLink(directory); }},
      {"test is not a directory", [&] { fs::remove_all(directory), writeBytes(directory, ""); }},
      {"test belongs to another user", [&] { chownOf(directory); }},
      {"test: Not a directory", [&] { fs::remove_all(home), writeBytes(home, ""); }},
      {"json can be written by group or others", [&] { chmod(file.c_str(), 0620); }},
      {"json can be written by group or others", [&] { chmod(file.c_str(), 0602); }},
      {"json is a symbolic link", [&] { toLink(file); }},
      {"json is not a regular file", [&] { fs::remove(file), fs::create_directory(file); }},
      {"json is not a regular file", [&] { fs::remove(file), mkfifo(file.c_str(), 0600); }},
      {"json belongs to another user", [&] { chownOf(file); }},
      {"json is larger than 64 MiB", [&] { fs::resize_file(file, (64 << 20) + 1); }}};
  for (const auto& [failure, prepare] : rows) {
    if (failure.ends_with("another user") && geteuid() != 0) continue;
    startOver();
    prepare();
    const auto reason = openSuite(name).failure;
    EXPECT_TRUE(reason.ends_with(failure)) << failure << ": " << reason;
    EXPECT_EQ(failureOf([] { save({{"key", 2.0}}); }), reason);
    EXPECT_EQ(failureOf([] { rehearseSavingToSuite(name); }), reason);
  }
  fs::remove_all(home);
}

TEST_F(SuiteStoreTest, ADamagedFileReadsAsNothingAndIsSetAsideByTheNextSave) {
  const ClockOverride clock{sys_days{2026y / November / 24} + 22h + 15min};
  const fs::path aside = file.string() + ".damaged-20261124T221500Z";
  for (const auto& damage : {""s, "{"s, "[]"s, R"({"key": 1})"s, std::string(5000, '?')}) {
    startOver();
    writeBytes(file, damage);
    EXPECT_NE(openSuite(name).damage, "");
    EXPECT_FALSE(load("key"));
    EXPECT_EQ(failureOf([] { rehearseSavingToSuite(name); }), "");
    EXPECT_EQ(readBytes(file), damage);
    save({{"new", 1.0}});
    EXPECT_EQ(load("new"), DefaultsValue{1.0});
    EXPECT_EQ(openSuite(name).damage, "");
    EXPECT_EQ(readBytes(aside), damage);
  }
  writeBytes(file, "damaged once more");
  save({{"new", 2.0}});
  EXPECT_EQ(readBytes(aside.string() + "-2"), "damaged once more");
  EXPECT_EQ(readBytes(aside), std::string(5000, '?'));
}

TEST_F(SuiteStoreTest, WhatLiesUnderTheNameOfTheNewFileDoesNotStopASave) {
  const std::function<void()> rows[] = {[&] { writeBytes(leftover, "left by a killed saver"); },
                                        [&] { mkfifo(leftover.c_str(), 0600); },
                                        [&] { fs::create_symlink(home / "victim", leftover); },
                                        [&] { fs::create_directories(leftover / "full"); }};
  for (const auto& prepare : rows) {
    startOver();
    prepare();
    save({{"key", 2.0}});
    EXPECT_EQ(load("key"), DefaultsValue{2.0});
    EXPECT_FALSE(fs::exists(fs::symlink_status(leftover)));
    EXPECT_FALSE(fs::exists(home / "victim"));
  }
}

TEST_F(SuiteStoreTest, ReadingAndRehearsingMakeNothing) {
  const auto before = fs::last_write_time(file);
  rehearseSavingToSuite(name);
  EXPECT_EQ(fs::last_write_time(file), before);
  EXPECT_EQ(count(""), 1);
  fs::remove_all(home);
  EXPECT_FALSE(load("key"));
  rehearseSavingToSuite(name);
  EXPECT_FALSE(fs::exists(home));
}

TEST_F(SuiteStoreTest, AReaderBesideFourSaversSeesWholeSavesAndNoSaveIsLost) {
  std::vector<pid_t> savers;
  for (double saver = 1; saver <= 4; ++saver)
    savers.push_back(startProcess([saver] {
      for (double number = 0; number < 30; ++number)
        save({{"key", saver + number}, {"same", saver + number}, {"of " + std::to_string(saver), number}});
    }));
  save({{"same", 1.0}, {"key", 1.0}});
  for (const pid_t saver : savers) {
    int status = -1;
    while (waitpid(saver, &status, WNOHANG) == 0) {
      const auto store = openSuite(name).store;
      ASSERT_TRUE(store);
      ASSERT_EQ(store->object("key"), store->object("same"));
    }
    EXPECT_EQ(status, 0);
  }
  for (double saver = 1; saver <= 4; ++saver)
    EXPECT_EQ(load("of " + std::to_string(saver)), DefaultsValue{29.0});
  EXPECT_EQ(count(""), 1);
}

}  // namespace
