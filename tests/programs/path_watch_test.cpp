#include "tarno/common/path_watch.hpp"

#include <gtest/gtest.h>
#include <sys/inotify.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/system_calls.hpp"
#include "support/temporary_store.hpp"

WRAP(int, inotify_init1, (int flags), (flags))
WRAP(int, inotify_add_watch, (int file, const char* path, std::uint32_t events), (file, path, events))

namespace {

namespace fs = std::filesystem;

TEST(PathWatch, TellsAboutItsFileWhicheverFoldersComeAndGo) {
  const TemporaryStore store;
  const auto before = fs::current_path();
  fs::current_path(store.path);
  fs::create_directory("data");
  fs::create_symlink("data", "link");
  int changes = 0;
  program::PathWatch watch{[&] { ++changes; }};
  EXPECT_TRUE(watch.follow(store.path / "link/group/store/file"));
  EXPECT_FALSE(watch.follow(store.path / "link/group/store/file"));

  const std::pair<const char*, bool> steps[] = {
      {"mkdir data/other", false},
      {"echo text > data/group", true},  // a file in place of a folder
      {"rm data/group", true},
      {"mkdir -p data/group/store", true},
      {"echo text > data/group/store/new", false},
      {"mv data/group/store/new data/group/store/file", true},
      {"echo text > data/group/file", false},
      {"echo text > data/group/store/file", true},
      {"cat data/group/store/file > other", false},
      {"mv data/group/store/file file", true},
      {"mv file data/group/store/file", true},
      {"rm data/group/store/file", true},
      {"mv data/group/store data/group/old", true},
      {"echo text > data/group/old/file", false},
      {"mkdir data/group/store", true},
      {"echo text > data/group/store/file", true},
      {"mv data/group data/moved", true},
      {"mv data/moved data/group", true},
      {"mkdir -p elsewhere/group/store && ln -s elsewhere new && mv -T new link", true},
      {"echo text > data/group/store/file", false},
      {"echo text > elsewhere/group/store/file", true}};
  const auto isToldAfter = [&](const char* command) {
    changes = 0;
    EXPECT_EQ(std::system(command), 0) << command;
    // The kernel has queued all events of the command by now.
    for (pollfd polled{watch.prepare().descriptors[0]}; poll(&polled, 1, 0) > 0;)
      watch.dispatch(polled.revents);
    return changes > 0;
  };
  for (const auto& [command, isTold] : steps) EXPECT_EQ(isToldAfter(command), isTold) << command;

  std::size_t kept = 0;  // the length of the kernel's queue of events; each rename causes two
  std::ifstream{"/proc/sys/fs/inotify/max_queued_events"} >> kept;
  const fs::path folder = "elsewhere/group/store", names[] = {folder / "one", folder / "other"};
  std::ofstream{names[0]} << "";
  for (std::size_t i = 0; i <= kept / 2; ++i) fs::rename(names[i % 2], names[1 - i % 2]);
  EXPECT_TRUE(isToldAfter("rm elsewhere/group/store/file")) << "an event that is lost";
  fs::current_path(before);
}

TEST(PathWatch, LooksEveryFiveSecondsWhereTheSystemCannotWatchAndSaysSoOnce) {
  const TemporaryStore store;
  const struct { int call, error; } faults[] = {{0, EMFILE}, {1, ENOSPC}, {2, ENOSPC}, {3, ENOMEM}};
  for (const auto& [call, error] : faults) {
    int changes = 0;
    program::PathWatch watch{[&] { ++changes; }};
    testing::internal::CaptureStderr();
    system_calls::intercept(call, [fault = error] { return fault; });
    watch.follow(store.path / "file");
    EXPECT_TRUE(system_calls::wasReached()) << call;
    const auto left = watch.prepare().until - program::EventSource::Clock::now();
    EXPECT_TRUE(std::chrono::seconds{4} < left && left <= std::chrono::seconds{5}) << call;
    watch.dispatch(0);
    EXPECT_EQ(changes, 0) << call;
    program::PathWatch other{[] {}};
    system_calls::intercept(call, [fault = error] { return fault; });
    other.follow(store.path / "file");
    const auto said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("cannot watch"), said.npos) << call;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    if (call != 2) continue;
    for (const bool isFailing : {true, false}) {
      while (watch.prepare().until > program::EventSource::Clock::now()) poll(nullptr, 0, 100);
      if (isFailing) system_calls::intercept(1, [] { return ENOSPC; });
      testing::internal::CaptureStderr();
      changes = 0;
      watch.dispatch(0);
      EXPECT_EQ(changes, 1) << "a look";
      EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "it said so before";
      EXPECT_EQ(watch.prepare().until != program::EventSource::Clock::time_point::max(), isFailing);
    }
  }
}

}  // namespace
