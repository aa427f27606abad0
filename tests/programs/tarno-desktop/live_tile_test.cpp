#include "tarno/tarno-desktop/live_tile.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <list>

#include "fake_widget.hpp"

namespace {

using namespace std::chrono_literals;

/// A live tile with a program of its own, and what it showed.
struct Fixture {
  explicit Fixture(const std::string& behaviour, std::optional<tarno::Date> at = {}) {
    writeFakeWidget(folder, behaviour);
    tile.emplace(desktop::FrameRequest{folder.path / "tarno-widget", "medium", 1, at},
                 [this](const desktop::Frame& frame) {
                   shown.push_back(frame.title + " " + std::to_string(std::lround(frame.picture->scale)));
                 });
    tile->addTo(loop);
  }

  /// How often the program was started.
  std::ptrdiff_t requests() const {
    const auto log = folder.read("log");
    return std::count(log.begin(), log.end(), '\n');
  }
  bool waitFor(const std::function<bool()>& condition) { return runUntil(loop, condition); }
  void wait(std::chrono::milliseconds time) { runFor(loop, time); }

  TemporaryFolder folder;
  program::EventLoop loop;
  std::optional<desktop::LiveTile> tile;
  std::vector<std::string> shown;
};

/// The store's content is the title.
constexpr auto showStore =
    "draw(title=open(folder + '/store').read() if os.path.exists(folder + '/store') else 'none')";

TEST(NextRequest, WaitsForTheReloadDateAndAtLeastFiveSeconds) {
  constexpr tarno::Date now = std::chrono::sys_days{std::chrono::days{20'000}};
  const struct {
    const char* what;
    std::optional<tarno::Date> reloadDate;
    tarno::Date next;
  } cases[] = {{"no answer", {}, now + 30s},
               {"later", now + 31s, now + 31s},
               {"soon", now + 4999ms, now + 5s},
               {"past", now - 1h, now + 5s},
               {"after all dates", tarno::Date::max(), tarno::latestDate}};
  for (const auto& [what, reloadDate, next] : cases)
    EXPECT_EQ(desktop::nextRequest(now, reloadDate), next) << what;
}

TEST(LiveTile, ShowsTheLastOfManySavesAndFewOfThem) {
  Fixture fixture{showStore};
  ASSERT_TRUE(fixture.waitFor([&] { return !fixture.shown.empty(); }));
  EXPECT_EQ(fixture.shown.back(), "none 1");
  fixture.wait(600ms);
  EXPECT_LE(fixture.requests(), 2) << "one more, for what came before the first watch";
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i <= 100; ++i) {
    fixture.folder.write("store", std::to_string(i));
    fixture.wait(10ms);
  }
  EXPECT_TRUE(fixture.waitFor([&] { return fixture.shown.back() == "100 1"; }));
  fixture.wait(600ms);
  const auto requests = fixture.requests();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_LE(static_cast<double>(requests), 3 + 4 * seconds.count()) << "four a second, and the last one";
  EXPECT_GE(requests, 5);
}

TEST(LiveTile, AsksAgainInTime) {
  const struct {
    const char *what, *behaviour;
    std::optional<tarno::Date> at;
    std::ptrdiff_t least, most;
  } cases[] = {{"turns stale", "draw(stale_from=date(2))", {}, 3, 4},
               {"is stale in vain", "draw(stale_from=date(-60))", {}, 4, 6},
               {"stands still", "draw(stale_from=date(2))", tarno::now(), 2, 2},
               {"has a reload date", "draw(reload_after=date(30))", {}, 2, 2},
               {"has a reload date that is past", "draw(reload_after=date(-30))", {}, 2, 2}};
  program::EventLoop all;
  std::list<Fixture> fixtures;
  for (const auto& each : cases) fixtures.emplace_back(each.behaviour, each.at).tile->addTo(all);
  runFor(all, 3500ms);
  auto fixture = fixtures.begin();
  for (const auto& [what, behaviour, at, least, most] : cases) {
    const auto requests = fixture++->requests();
    EXPECT_GE(requests, least) << what;
    EXPECT_LE(requests, most) << what;
  }
}

TEST(LiveTile, KeepsItsPictureAndSaysOnceWhatIsWrong) {
  testing::internal::CaptureStderr();
  Fixture fixture{"print('the store\\x1b is locked', file=sys.stderr)\n" + std::string{showStore}};
  ASSERT_TRUE(fixture.waitFor([&] { return fixture.requests() == 2; }));
  for (const char* const behaviour :
       {"sys.exit(3)", "sys.exit(3)", "print('nonsense', end='')", showStore, "sys.exit(3)"}) {
    const auto requests = fixture.requests();
    writeFakeWidget(fixture.folder, behaviour);
    fixture.wait(300ms);
    fixture.tile->refresh();
    EXPECT_TRUE(fixture.waitFor([&] { return fixture.requests() > requests; }));
    fixture.wait(200ms);
  }
  EXPECT_EQ(fixture.shown, (std::vector<std::string>{"none 1", "none 1", "none 1"}));
  const auto said = testing::internal::GetCapturedStderr();
  const auto count = [&said](const std::string& words) {
    int found = 0;
    for (auto at = said.find(words); at != std::string::npos; at = said.find(words, at + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count("the store? is locked\n"), 1) << said;
  EXPECT_EQ(count("no new picture: ended with code 3"), 2) << said;
  EXPECT_EQ(count("\n"), 4) << said;
}

TEST(LiveTile, EndsWhatHangs) {
  testing::internal::CaptureStderr();
  const auto fill = "print('x' * 2000000)";  // more than a pipe holds
  Fixture stopped{"os.kill(os.getpid(), 19)"}, full{fill};
  full.tile->addTo(stopped.loop);
  EXPECT_TRUE(stopped.waitFor([&] { return stopped.tile->isAtRest() && full.tile->isAtRest(); }));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "desktop_test: no new picture: no answer within 10 s\ndesktop_test: no new picture: no answer "
            "within 10 s\n");
}

}  // namespace
