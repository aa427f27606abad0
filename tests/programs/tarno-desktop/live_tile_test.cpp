#include "tarno/tarno-desktop/live_tile.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <thread>

#include "fake_widget.hpp"
#include "support/system_calls.hpp"

WRAP(int, memfd_create, (const char* name, unsigned flags), (name, flags))

namespace {

using namespace std::literals;

/// A live tile with a fake widget program, and a record of what it showed.
struct Fixture {
  explicit Fixture(const std::string& behaviour, std::optional<tarno::Date> at = {}) {
    writeFakeWidget(folder, behaviour);
    tile.emplace(desktop::FrameRequest{folder.path / "tarno-widget", "medium", 1, at},
                 [this](const desktop::Frame& frame) {
                   shown.push_back(frame.title + " " + std::to_string(std::lround(frame.picture->scale)));
                 });
    tile->addTo(loop);
  }

  /// Returns how often the program was started.
  std::ptrdiff_t requests() const {
    const auto log = folder.read("log");
    return std::count(log.begin(), log.end(), '\n');
  }
  bool waitFor(const std::function<bool()>& condition) { return loop.runUntil(condition); }
  /// Waits until no frame is being drawn or needed.
  bool waitForRest() {
    return waitFor([this] {
      const auto wait = tile->prepare();
      return wait.descriptors.empty() && wait.until == program::EventSource::Clock::time_point::max();
    });
  }

  TemporaryFolder folder;
  TestLoop loop;
  std::optional<desktop::LiveTile> tile;
  std::vector<std::string> shown;
};

/// Draws a frame whose title is the content of the store.
constexpr auto showStore =
    "draw(title=open(folder + '/store').read() if os.path.exists(folder + '/store') else 'none')";

TEST(NextRequest, WaitsForTheReloadDateAndAtLeastFiveSeconds) {
  constexpr tarno::Date now = std::chrono::sys_days{std::chrono::days{20'000}};
  const std::tuple<const char*, std::optional<tarno::Date>, tarno::Date> cases[] = {
      {"no answer", {}, now + 30s},
      {"later", now + 31s, now + 31s},
      {"soon", now + 4999ms, now + 5s},
      {"past", now - 1h, now + 5s},
      {"after all dates", tarno::Date::max(), tarno::latestDate}};
  for (const auto& [what, reloadDate, next] : cases)
    EXPECT_EQ(desktop::nextRequest(now, reloadDate), next) << what;
}

TEST(LiveTile, ShowsTheLastOfManySavesAndFewOfThem) {
  Fixture fixture{showStore};
  ASSERT_TRUE(fixture.waitForRest());
  EXPECT_EQ(fixture.shown.back(), "none 1");
  EXPECT_EQ(fixture.requests(), 2) << "one more, for what came before the first watch";
  const auto start = std::chrono::steady_clock::now();
  int saves = 0;
  ASSERT_TRUE(fixture.waitFor([&] {
    std::this_thread::sleep_for(10ms);
    fixture.folder.write("store", std::to_string(++saves));
    return fixture.requests() >= 5;
  }));
  ASSERT_TRUE(fixture.waitFor([&] { return fixture.shown.back() == std::to_string(saves) + " 1"; }));
  ASSERT_TRUE(fixture.waitForRest());
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_LE(static_cast<double>(fixture.requests()), 3 + 4 * seconds.count()) << "four a second";
}

TEST(LiveTile, AsksAgainInTime) {
  const struct {
    const char *what, *behaviour;
    std::optional<tarno::Date> at;
    std::ptrdiff_t awaited;         // the number of requests to wait for
    std::chrono::seconds interval;  // the minimum time between requests, from the second one on
  } cases[] = {{"turns stale", "draw(stale_from=date(2))", {}, 3, 1s},  // date() drops fractions of a second
               {"is stale in vain", "draw(stale_from=date(-60))", {}, 4, 1s},
               {"stands still", "draw(stale_from=date(2))", tarno::now(), 2, 29s},
               {"has a reload date", "draw(reload_after=date(30))", {}, 2, 29s},
               {"has a reload date that is past", "draw(reload_after=date(-30))", {}, 2, 5s}};
  const auto start = std::chrono::steady_clock::now();
  TestLoop loop;
  std::deque<Fixture> fixtures;
  for (const auto& each : cases) fixtures.emplace_back(each.behaviour, each.at).tile->addTo(loop);
  for (std::size_t i = 0; i < fixtures.size(); ++i)
    EXPECT_TRUE(loop.runUntil([&] { return fixtures[i].requests() >= cases[i].awaited; })) << cases[i].what;
  for (std::size_t i = 0; i < fixtures.size(); ++i) {
    const auto requests = fixtures[i].requests();
    EXPECT_LE(requests, 2 + (std::chrono::steady_clock::now() - start) / cases[i].interval) << cases[i].what;
  }
}

/// Returns the remaining seconds of the only timer of the process, or 0 if it is not set.
int secondsOfTimer() {
  for (const auto& file : std::filesystem::directory_iterator{"/proc/self/fdinfo"}) {
    std::ifstream lines{file.path()};
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("it_value: (")) return std::stoi(line.substr(11));
  }
  return 0;
}

TEST(LiveTile, KeepsItsPictureSaysOnceWhatIsWrongAndTriesAgain) {
  testing::internal::CaptureStderr();
  Fixture fixture{"print('the store\\x1b is locked', file=sys.stderr)\n" + std::string{showStore}};
  ASSERT_TRUE(fixture.waitForRest());
  const std::string draw = "draw(reload_after=date(3))";
  for (const auto& behaviour : {"print('nonsense', end='')"s, "sys.exit(3)"s, "sys.exit(3)"s, draw,
                                "sys.exit(3)"s, draw, "no descriptor is left"s}) {
    if (behaviour == "no descriptor is left") system_calls::intercept(0, [] { return EMFILE; });
    writeFakeWidget(fixture.folder, behaviour);
    fixture.tile->refresh();
    EXPECT_TRUE(fixture.waitForRest());
    EXPECT_EQ(secondsOfTimer() > 20, behaviour != draw) << behaviour;
  }
  EXPECT_EQ(fixture.requests(), 8);
  EXPECT_EQ(fixture.shown, (std::vector<std::string>{"none 1", "none 1", "Tarno 1", "Tarno 1"}));
  const std::string line = "desktop_test: no new picture: ", code = line + "ended with code 3\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "the store? is locked\n" + line + "the answer is not a JSON object\n" + code + code + line +
                "cannot create memory for a picture: Too many open files\n");
}

TEST(LiveTile, EndsWhatHangs) {
  testing::internal::CaptureStderr();
  Fixture stopped{"os.kill(os.getpid(), 19)"}, full{"print('x' * 2000000)"};  // blocks: a pipe holds less
  EXPECT_TRUE(stopped.waitForRest());
  EXPECT_TRUE(full.waitForRest());
  const std::string line = "desktop_test: no new picture: no answer within 10 s\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), line + line);
}

}  // namespace
