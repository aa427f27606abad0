#include <signal.h>
#include <sys/stat.h>

#include "support/suite_fixture.hpp"
#include "support/system_calls.hpp"

using namespace foundation;

namespace {

namespace fs = std::filesystem;

constexpr int noMoreCalls = 100;

/// A save of "key" and "twin" as 2, into each kind of suite, with something happening before each of its
/// system calls in turn.
class SuiteFaultsTest : public SuiteTest {
 protected:
  struct Beginning {
    const char* what;
    std::function<void()> prepare;
    std::optional<DefaultsValue> old;  ///< under "key" and "twin"
  };
  const std::vector<Beginning> beginnings{{"first save", [this] { fs::remove_all(home); }, {}},
                                          {"update",
                                           [] {
                                             save({{"key", 1.0}, {"twin", 1.0}});
                                           },
                                           1.0},
                                          {"damaged file", [this] { writeBytes(file, "{"); }, {}},
                                          {"left-over",
                                           [this] {
                                             save({{"twin", 1.0}});
                                             writeBytes(leftover, "half");
                                           },
                                           1.0}};

  static void saveTwo() { save({{"key", 2.0}, {"twin", 2.0}}); }

  void expect(const std::optional<DefaultsValue>& value) const {
    EXPECT_EQ(load("key"), value);
    EXPECT_EQ(load("twin"), value);
  }
  void expectThatTheNextSaveWorks(bool isDamaged) const {
    save({{"key", 3.0}, {"twin", 3.0}});
    expect(3.0);
    EXPECT_EQ(count(""), isDamaged ? 2 : 1);
  }

  /// Calls `test` for every beginning and every number of a call until that is not reached.
  void forEachCall(const std::function<void(const Beginning&, int number)>& test) const {
    for (const auto& beginning : beginnings) {
      int number = 0;
      for (bool isReached = true; isReached && number < noMoreCalls; ++number) {
        SCOPED_TRACE(beginning.what + (" with an event before call " + std::to_string(number)));
        startOver();
        beginning.prepare();
        test(beginning, number);
        isReached = reached_;
      }
      EXPECT_GT(number, 13);
      EXPECT_LT(number, noMoreCalls);
    }
  }
  mutable bool reached_ = false;
};

TEST_F(SuiteFaultsTest, ASaverThatIsKilledLeavesTheOldOrTheNewStatus) {
  forEachCall([this](const Beginning& beginning, int number) {
    const pid_t saver = startProcess([number] {
      system_calls::intercept(number, [] { return raise(SIGKILL), false; });
      saveTwo();
    });
    int status = 0;
    waitpid(saver, &status, 0);
    reached_ = WIFSIGNALED(status);
    expect(load("key") == DefaultsValue{2.0} ? 2.0 : beginning.old);
    if (!reached_) expect(2.0);
    expectThatTheNextSaveWorks(beginning.what == std::string{"damaged file"});
  });
}

TEST_F(SuiteFaultsTest, ASaveSucceedsOrLeavesTheOldStatusWhenACallFails) {
  forEachCall([this](const Beginning& beginning, int number) {
    system_calls::intercept(number, [] { return true; });
    const bool isSaved = failureOf(saveTwo).empty();
    reached_ = system_calls::wasReached();
    expect(isSaved ? 2.0 : beginning.old);
    EXPECT_LE(fs::exists(directory) ? count(".defaults") : 0, beginning.what == std::string{"left-over"});
    expectThatTheNextSaveWorks(beginning.what == std::string{"damaged file"});
  });
}

TEST_F(SuiteFaultsTest, AFailedCallMakesReadingFailAndChangesNothing) {
  for (int number = 0;; ++number) {
    system_calls::intercept(number, [] { return true; });
    const auto opening = openSuite(name);
    if (!system_calls::wasReached()) break;
    EXPECT_FALSE(opening.store) << number;
    EXPECT_NE(opening.failure.find("Input/output error"), std::string::npos) << opening.failure;
    EXPECT_EQ(opening.damage, "");
    EXPECT_EQ(load("key"), DefaultsValue{1.0});
    ASSERT_LT(number, noMoreCalls);
  }
}

TEST_F(SuiteFaultsTest, AFolderThatIsReplacedDuringASaveGetsTheStatusToo) {
  const fs::path moved = home / "moved";
  const std::pair<bool, std::function<void()>> rows[] = {{true, [&] { fs::remove_all(directory); }},
                                                         {true, [&] { fs::rename(directory, moved); }},
                                                         {true,
                                                          [&] {
                                                            fs::rename(directory, moved);
                                                            fs::create_directory(directory);
                                                            fs::permissions(directory, fs::perms::owner_all);
                                                          }},
                                                         {false, [&] {
                                                            fs::rename(directory, moved);
                                                            fs::create_directory_symlink(moved, directory);
                                                          }}};
  for (const auto& [isSavedAlways, swap] : rows) {
    for (int number = 0; number < noMoreCalls; ++number) {
      SCOPED_TRACE(number);
      startOver();
      system_calls::intercept(number, [&] { return swap(), false; });
      const bool isSaved = failureOf(saveTwo).empty();
      if (!system_calls::wasReached()) break;
      EXPECT_EQ(isSaved, isSavedAlways);
      if (isSaved) expect(2.0);
    }
  }
}

TEST_F(SuiteFaultsTest, AFileThatIsReplacedDuringASaveIsNeitherFollowedNorWaitedFor) {
  const fs::path victim = home / "victim";
  const std::function<void()> rows[] = {[&] { fs::create_symlink(victim, file); },
                                        [&] { mkfifo(file.c_str(), 0600); },
                                        [&] { fs::create_directories(file / "full"); }, [] {}};
  for (const auto& swap : rows) {
    for (int number = 0; number < noMoreCalls; ++number) {
      SCOPED_TRACE(number);
      startOver();
      writeBytes(victim, "victim");
      system_calls::intercept(number, [&] { return fs::remove(file), swap(), false; });
      const bool isSaved = failureOf(saveTwo).empty();
      if (!system_calls::wasReached()) break;
      if (!isSaved) EXPECT_NE(load("key"), DefaultsValue{2.0});
      EXPECT_EQ(readBytes(victim), "victim");
      fs::remove_all(file);
      expectThatTheNextSaveWorks(false);
    }
  }
}

}  // namespace
