#include <gtest/gtest.h>
#include <linux/close_range.h>
#include <unistd.h>

#include <csignal>

#include "fake_widget.hpp"
#include "tarno/tarno-desktop/frame.hpp"

namespace {

/// The result of a frame process, and its log.
struct Answer : desktop::FrameResult {
  std::string log;
};

Answer answerOf(const std::string& behaviour, desktop::FrameRequest request = {}) {
  const TemporaryFolder folder;
  writeFakeWidget(folder, behaviour);
  if (request.program.empty()) request.program = folder.path / "tarno-widget";
  desktop::FrameProcess process{request};
  return {process.finish(), folder.read("log")};
}

TEST(FrameProcess, ReadsThePictureAndItsDescription) {
  const auto answer = answerOf(
      "os.pwrite(fd, bytes(range(64)), 0); draw(stale_from='2026-11-16T15:44:02.25Z',"
      "reload_after='2026-11-16T15:42:05Z', unknown=['x' * 200000])\n"
      "if not os.fork():  # a child of it, which has its pipes, is not waited for\n"
      "    while os.path.exists(folder): time.sleep(0.1)",
      {.family = "small", .scale = 1.25, .at = tarno::Date{std::chrono::seconds{1794843695}}});
  ASSERT_TRUE(answer.frame) << answer.failure;
  EXPECT_EQ(answer.log, "frame --family small --scale 1.25 --fd N --at 2026-11-16T15:41:35Z\n");
  const auto& [picture, title, announcement, elements, reload, stale, store] = *answer.frame;
  EXPECT_EQ(title, "Tarno");
  EXPECT_EQ(announcement, "locked");
  EXPECT_EQ(elements, (std::vector<desktop::AccessibleElement>{{"staticText", "Locked", 1, 2.5, 3, 4}}));
  EXPECT_EQ(reload.time_since_epoch(), std::chrono::seconds{1794843725});
  EXPECT_EQ(stale->time_since_epoch(), std::chrono::milliseconds{1794843842250});
  EXPECT_EQ(store.filename(), "store");
  EXPECT_EQ(picture->scale, 1.25);
  ASSERT_EQ(picture->row(3).size(), 3U);
  EXPECT_EQ(picture->row(3)[2], 0x3B3A3938U);
  const auto hash = [](const char* drawing) { return answerOf(drawing).frame->picture->hash(); };
  EXPECT_EQ(hash("draw()"), hash("draw()"));
  EXPECT_NE(hash("draw()"), hash("os.pwrite(fd, b'1', 63); draw()"));
}

TEST(FrameProcess, ReturnsNoPictureForAnyFault) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"Segmentation fault", {"os.kill(os.getpid(), 11)"}},
      {"Aborted", {"draw(); os.kill(os.getpid(), 6)"}},
      {"code 70", {"draw(); sys.exit(70)"}},
      {"code 64: too large", {"print(json.dumps({'error': 'too large'})); sys.exit(64)"}},
      {"not a JSON object", {"print('nonsense' * 100)", "print([])", "draw(); draw()"}},
      {"answer states",
       {"draw(memory=63)", "draw(width=5)", "draw(stride=15)", "draw(seals=fcntl.F_SEAL_GROW)",
        "draw(seals=0)"}},
      {"number", {"draw(width='3')", "draw(accessibility=[{'role': 'image', 'label': 'x', 'x': '1'}])"}},
      {"title", {"draw(title='missing')"}},
      {"string", {"draw(announcement=1)"}},
      {"array", {"draw(accessibility={})"}},
      {"tomorrow", {"draw(reload_after='tomorrow')"}},
      {"absolute", {"draw(watch={'folder': 'data', 'file': 'store'})"}},
      {"name of the watched",
       {"draw(watch={'folder': '/', 'file': ''})", "draw(watch={'folder': '/', 'file': '../x'})"}},
      {"that of the tile",
       {"draw(width=0)", "draw(height=0)", "draw(tile={'width': 4, 'height': 4})",
        "draw(tile={'width': 3, 'height': 2})"}},
      {"out of range",
       {"draw(height=2**40)", "draw(width=2**32+3)", "draw(tile={'width': -3, 'height': 4})",
        "draw(3600000000, stride=900000000)",  // a sparse file
        "draw(tile={'width': 3e9, 'height': 4}, width=2**31-1)",
        "draw(accessibility=[{'role': '', 'label': '', 'x': -1e300, 'y': 0, 'width': 0, 'height': 0}])"}},
      {"more than 64", {"draw(accessibility=[{}] * 65)"}},
      {"NUL", {"draw(watch={'folder': '/' + 'x' * 4096, 'file': 'x'})"}},
      {"longer than 2048",
       {"draw(title='x' * 2049)",
        "draw(accessibility=[{'role': '', 'label': 'x' * 5000, 'x': 0, 'y': 0, 'width': 0, 'height': 0}])"}},
      {"256 KB", {"draw(unknown='x' * 300000)", "print('[' * 1000000)"}}};
  for (const auto& [failure, behaviours] : cases)
    for (const char* const behaviour : behaviours) {
      const auto answer = answerOf(behaviour);
      EXPECT_FALSE(answer.frame) << behaviour;
      EXPECT_NE(answer.failure.find(failure), std::string::npos) << behaviour << ": " << answer.failure;
      EXPECT_EQ(answer.failure.find('\n'), std::string::npos) << behaviour;
    }
  EXPECT_TRUE(answerOf("draw(width=4)").frame) << "without room between rows";
}

TEST(FrameProcess, RunsTheProgramInPathWhereItsOwnIsMissing) {
  const TemporaryFolder folder;
  writeFakeWidget(folder, "draw()");
  const std::string usual = "/usr/bin:/bin";
  setenv("PATH", (folder.path.string() + ":" + usual).c_str(), 1);
  EXPECT_TRUE(answerOf("", {.program = "/nowhere/tarno-widget"}).frame);
  setenv("PATH", usual.c_str(), 1);
  EXPECT_EQ(answerOf("", {.program = "/nowhere/no-widget"}).failure,
            "cannot be run: No such file or directory");
}

TEST(FrameProcess, PassesOnTheEnvironmentButNoSignalMaskAndNoDescriptor) {
  setenv("TARNO_FRAME_TEST", "reaches it", 1);
  sigset_t all;
  sigfillset(&all);
  sigprocmask(SIG_BLOCK, &all, nullptr);
  close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);  // the caller of the test may have left descriptors open
  const auto answer = answerOf(
      "import signal\n"
      "files = [f'/proc/self/fd/{number}' for number in range(3, 1000)]\n"
      "print(os.environ['TARNO_FRAME_TEST'], signal.pthread_sigmask(signal.SIG_BLOCK, []),"
      "[os.readlink(file) for file in files if os.path.lexists(file)], file=sys.stderr)\n"
      "draw()");
  EXPECT_TRUE(answer.frame);
  EXPECT_EQ(answer.errors, "reaches it set() ['/memfd:tarno-tile (deleted)']\n");
}

}  // namespace
