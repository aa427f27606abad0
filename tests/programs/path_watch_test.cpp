#include "common/path_watch.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "support/temporary_store.hpp"

namespace {

namespace fs = std::filesystem;

TEST(PathWatch, TellsAboutItsFileWhicheverFoldersComeAndGo) {
  const TemporaryStore store;
  const auto before = fs::current_path();
  fs::current_path(store.folder());
  fs::create_directory("data");
  fs::create_symlink("data", "link");
  int changes = 0;
  program::PathWatch watch{[&] { ++changes; }};
  EXPECT_TRUE(watch.follow(store.folder() / "link/group/store/file"));
  EXPECT_FALSE(watch.follow(store.folder() / "link/group/store/file"));
  EXPECT_TRUE(watch.isWatching());

  const auto write = [](const fs::path& path) { std::ofstream{path} << "text"; };
  const struct {
    const char* what;
    std::function<void()> happens;
    bool isTold;
  } steps[] = {
      {"another folder is made", [] { fs::create_directory("data/other"); }, false},
      {"a file is made where a folder is missing", [&] { write("data/group"); }, true},
      {"that file goes", [] { fs::remove("data/group"); }, true},
      {"the folders are made", [] { fs::create_directories("data/group/store"); }, true},
      {"another file is made", [&] { write("data/group/store/new"); }, false},
      {"it is renamed to the watched file",
       [] { fs::rename("data/group/store/new", "data/group/store/file"); }, true},
      {"a file is made above", [&] { write("data/group/file"); }, false},
      {"the file is written to", [&] { write("data/group/store/file"); }, true},
      {"the file is read", [] { std::ifstream{"data/group/store/file"}.get(); }, false},
      {"the file is moved away", [] { fs::rename("data/group/store/file", "file"); }, true},
      {"the file comes back", [] { fs::rename("file", "data/group/store/file"); }, true},
      {"the file is removed", [] { fs::remove("data/group/store/file"); }, true},
      {"its folder is moved away", [] { fs::rename("data/group/store", "data/group/old"); }, true},
      {"a file is made in the old folder", [&] { write("data/group/old/file"); }, false},
      {"a new folder is made", [] { fs::create_directory("data/group/store"); }, true},
      {"a file is made in the new folder", [&] { write("data/group/store/file"); }, true},
      {"a folder above is moved away", [] { fs::rename("data/group", "data/moved"); }, true},
      {"another takes its place", [] { fs::rename("data/moved", "data/group"); }, true},
      {"another link takes the place of the one on the way",
       [] {
         fs::create_directories("other/group/store");
         fs::create_symlink("other", "new");
         fs::rename("new", "link");
       },
       true},
      {"a file is made in the old folder again", [&] { write("data/group/store/file"); }, false},
      {"a file is made where the link leads", [&] { write("other/group/store/file"); }, true},
  };
  for (const auto& [what, happens, isTold] : steps) {
    changes = 0;
    happens();
    // The kernel notes an event before the call that leads to it returns.
    for (pollfd polled{watch.prepare().descriptor, POLLIN, 0}; poll(&polled, 1, 0) > 0;)
      watch.dispatch(polled.revents);
    EXPECT_EQ(changes > 0, isTold) << what;
  }
  fs::current_path(before);
}

}  // namespace
