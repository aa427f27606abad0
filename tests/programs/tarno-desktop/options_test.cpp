#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "fake_widget.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/settings.hpp"

namespace {

using desktop::Layer;
using desktop::Options;

/// What a settings file and a command line come to; the words of a failure, its code first.
std::string read(const char* settings, const std::string& line, Options& options) {
  const TemporaryFolder folder;
  setenv("XDG_CONFIG_HOME", "relative/and/ignored", 1);
  setenv("HOME", folder.path.c_str(), 1);
  std::filesystem::create_directories(folder.path / ".config/tarno");
  if (settings) folder.write(".config/tarno/desktop.ini", settings);
  CLI::App app;
  desktop::addOptions(app, options);
  try {
    desktop::readSettings(app);
    app.parse(line);
    return "";
  } catch (const program::Failure& failure) {
    return std::to_string(failure.exitCode()) + " " + failure.what();
  } catch (const CLI::ParseError& error) {
    return error.what();
  }
}

TEST(Options, ComeFromTheSettingsFileUnlessTheCommandLineSaysOtherwise) {
  Options options;
  EXPECT_EQ(read(nullptr, "", options), "");
  EXPECT_EQ(options.family, "medium");
  EXPECT_EQ(options.anchor, (desktop::Anchor{1, 0}));
  EXPECT_EQ(options.margin, 16);
  EXPECT_FALSE(options.monitor || options.scale || options.at || options.plainWindow || options.listMonitors);
  EXPECT_EQ(
      read("# mine\nfamily = small\nanchor=\"bottom-left\"\nmargin = 5\nmonitor = HDMI-1\nlayer = above\n"
           "scale = 1.5\nplain-window = true\nat = 2026-11-16T15:41:35.25Z\n",
           "--family large --margin 7", options),
      "");
  EXPECT_EQ(options.family, "large");
  EXPECT_EQ(options.anchor, (desktop::Anchor{0, 1}));
  EXPECT_EQ(options.margin, 7);
  EXPECT_EQ(options.monitor, "HDMI-1");
  EXPECT_EQ(options.layer, Layer::above);
  EXPECT_EQ(options.scale, 1.5);
  EXPECT_TRUE(options.plainWindow);
  EXPECT_EQ(options.at->time_since_epoch(), std::chrono::milliseconds{1794843695250});
}

TEST(Options, TakeTheLeastAndTheGreatestScaleAndMargin) {
  for (const char* const limits : {"--scale 0.25 --margin 0", "--scale 16 --margin 10000"}) {
    Options options;
    EXPECT_EQ(read(nullptr, limits, options), "");
  }
}

TEST(Options, PutATileAtEachOfTheNinePlaces) {
  const char* const names[] = {"top-left", "top",         "top-right", "left",        "center",
                               "right",    "bottom-left", "bottom",    "bottom-right"};
  const int x[] = {110, 418, 726}, y[] = {60, 265, 470};
  for (std::size_t i = 0; i < 9; ++i) {
    Options options;
    EXPECT_EQ(read(nullptr, std::string{"--anchor "} + names[i], options), "");
    EXPECT_EQ(desktop::place(364, 170, {100, 50, 1000, 600}, options.anchor, 10),
              (desktop::Area{x[i % 3], y[i / 3], 364, 170}))
        << names[i];
  }
  EXPECT_EQ(desktop::place(364, 170, {100, 50, 200, 100}, {1, 1}, 10), (desktop::Area{100, 50, 364, 170}))
      << "a tile that does not fit";
}

TEST(Options, RefuseWhatTheyDoNotKnow) {
  const std::pair<const char*, const char*> cases[] = {
      {"family", "huge"}, {"anchor", "middle"}, {"margin", "-1"}, {"margin", "10001"}, {"margin", "wide"},
      {"layer", "below"}, {"scale", "0"},       {"scale", "17"},  {"scale", "nan"},    {"at", "tomorrow"},
      {"colour", "red"},  {"help", "true"},     {"scale", "1,5"}, {"autostart", "no"}};
  for (const auto& [name, value] : cases) {
    Options options;
    const auto failure = read((std::string{name} + " = " + value + "\n").c_str(), "", options);
    EXPECT_TRUE(failure.starts_with("78 /")) << name << " " << value << ": " << failure;
    EXPECT_NE(failure.find(std::string{"tarno/desktop.ini: "}), std::string::npos) << failure;
    EXPECT_NE(failure.find(name), std::string::npos) << failure;
    const auto usage = read(nullptr, std::string{"--"} + name + " " + value, options);
    EXPECT_FALSE(usage.empty() || usage.starts_with("78")) << name << " " << value;
  }
  Options options;
  for (const char* const onTheCommandLineOnly : {"autostart = on\n", "list-monitors = true\n"})
    EXPECT_TRUE(read(onTheCommandLineOnly, "", options).starts_with("78 /")) << onTheCommandLineOnly;
  EXPECT_TRUE(read(std::string(70000, '#').c_str(), "", options).starts_with("78 /")) << "too large";
}

}  // namespace
