#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "fake_widget.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/settings.hpp"

namespace {

using desktop::Options;

struct Parsed : Options {
  std::string failure;  ///< the exit code and the message
};

/// Returns the options that a settings file and a command line give.
Parsed parsed(const std::optional<std::string>& settings, const std::string& line = "") {
  const TemporaryFolder folder;
  setenv("XDG_CONFIG_HOME", "relative/and/ignored", 1);
  setenv("HOME", folder.path.c_str(), 1);
  std::filesystem::create_directories(folder.path / ".config/tarno");
  if (settings) folder.write(".config/tarno/desktop.ini", *settings);
  CLI::App app;
  Parsed result;
  desktop::addOptions(app, result);
  try {
    desktop::readSettings(app);
    app.parse(line);
  } catch (const program::Failure& failure) {
    result.failure = std::to_string(failure.exitCode()) + " " + failure.what();
  } catch (const CLI::ParseError& error) {
    result.failure = error.what();
  }
  return result;
}

TEST(Options, ComeFromTheSettingsFileUnlessTheCommandLineSaysOtherwise) {
  const auto usual = parsed({});
  EXPECT_EQ(usual.failure + usual.family, "medium");
  EXPECT_TRUE(usual.anchor == (desktop::Anchor{1, 0}) && usual.margin == (desktop::Margin{16, 16, 16, 16}));
  EXPECT_FALSE(usual.monitor || usual.scale || usual.at || usual.plainWindow || usual.listMonitors);
  const auto options = parsed(
      "# mine\nfamily = small # now\nanchor=\"bottom-left\"\nmargin = 5,6,7,8\nmonitor = HDMI-1\nlayer = "
      "above\n"
      "scale = 1.5\nplain-window = true\nat = 2026-11-16T15:41:35.25Z\n",
      "--family large --margin 7,8,9,0");
  EXPECT_EQ(options.failure + options.family, "large");
  EXPECT_TRUE(options.anchor == (desktop::Anchor{0, 1}) && options.margin == (desktop::Margin{7, 8, 9, 0}));
  EXPECT_EQ(options.monitor, "HDMI-1");
  EXPECT_EQ(options.scale, 1.5);
  EXPECT_TRUE(options.plainWindow && options.layer == desktop::Layer::above);
  EXPECT_EQ(options.at->time_since_epoch(), std::chrono::milliseconds{1794843695250});
}

TEST(Options, PutATileAtEachOfTheNinePlaces) {
  const char* const names[] = {"top-left", "top",         "top-right", "left",        "center",
                               "right",    "bottom-left", "bottom",    "bottom-right"};
  const int x[] = {110, 418, 726}, y[] = {60, 265, 470};
  for (std::size_t i = 0; i < 9; ++i) {
    const auto anchor = parsed({}, std::string{"--anchor "} + names[i]).anchor;
    EXPECT_EQ(desktop::place(364, 170, {100, 50, 1000, 600}, anchor, {10, 10, 10, 10}),
              (desktop::Area{x[i % 3], y[i / 3], 364, 170}))
        << names[i];
  }
  EXPECT_EQ(desktop::place(364, 170, {100, 50, 200, 100}, {1, 1}, {9, 9, 9, 9}),
            (desktop::Area{100, 50, 364, 170}))
      << "a tile that does not fit";
  const auto uneven = desktop::place(10, 10, {0, 0, 100, 50}, {0.5, 1}, {1, 2, 3, 4});
  EXPECT_EQ(uneven, (desktop::Area{45, 37, 10, 10}));
}

TEST(Options, RefuseWhatTheyDoNotKnow) {
  for (const char* const limits : {"--scale 0.25 --margin 0", "--scale 16 --margin 10000"})
    EXPECT_EQ(parsed({}, limits).failure, "");
  const std::pair<std::string, std::string> cases[] = {
      {"family", "huge"},     {"anchor", "middle"},      {"margin", "-1"},
      {"margin", "10001"},    {"margin", "1,2,3"},       {"margin", "1,,3,4"},
      {"margin", "1,2,3,4,"}, {"layer", "below"},        {"scale", "0"},
      {"scale", "17"},        {"scale", "nan"},          {"at", "tomorrow"},
      {"colour", "red"},      {"help", "true"},          {"scale", "1,5"},
      {"margin", "12.5"},     {"plain-window", "maybe"}, {"autostart", "no"}};
  for (const auto& [name, value] : cases) {
    const auto failure = parsed(std::string{name}.append(" = ").append(value)).failure;
    EXPECT_TRUE(failure.starts_with("78 /")) << name << " " << value << ": " << failure;
    EXPECT_NE(failure.find("tarno/desktop.ini: "), std::string::npos) << failure;
    EXPECT_NE(failure.find(name), std::string::npos) << failure;
    const auto usage = parsed({}, std::string{"--"}.append(name).append(" ").append(value)).failure;
    EXPECT_FALSE(usage.empty() || usage.starts_with("78")) << name << " " << value;
  }
  for (const auto& settings :
       {std::string{"autostart = on\n"}, std::string{"list-monitors = true\n"}, std::string(70000, '#')})
    EXPECT_TRUE(parsed(settings).failure.starts_with("78 /")) << settings.substr(0, 30);
  for (const char* const line : {"=", "[", "[]", "[desktop]", "++", "margin"})
    EXPECT_TRUE(parsed(std::string{"# mine\n\n"} + line)
                    .failure.ends_with("line 3: not a setting such as margin = 16"))
        << line;
}

}  // namespace
