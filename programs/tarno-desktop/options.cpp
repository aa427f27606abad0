#include "tarno-desktop/options.hpp"

#include <charconv>
#include <cstdlib>
#include <map>
#include <sstream>

#include "common/command_line.hpp"
#include "common/failure.hpp"
#include "common/files.hpp"
#include "foundation/iso8601.hpp"

namespace desktop {
namespace {

const std::map<std::string, Layer> layers{
    {"desktop", Layer::desktop}, {"normal", Layer::normal}, {"above", Layer::above}};

const std::map<std::string, Anchor> anchors{
    {"top-left", {0, 0}},    {"top", {0.5, 0}},      {"top-right", {1, 0}},
    {"left", {0, 0.5}},      {"center", {0.5, 0.5}}, {"right", {1, 0.5}},
    {"bottom-left", {0, 1}}, {"bottom", {0.5, 1}},   {"bottom-right", {1, 1}}};

/// An option that takes one of `words` into `value`.
template <class T>
void addWord(CLI::App& app, const std::string& name, T& value, const std::map<std::string, T>& words,
             const std::string& description) {
  const auto use = [&value, &words](const std::string& word) { value = words.at(word); };
  app.add_option_function<std::string>(name, use, description)
      ->check(CLI::IsMember(words))
      ->type_name("WORD");
}

/// CLI::Range would let NaN pass.
std::string checkScale(const std::string& text) {
  double scale = 0;
  const auto end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, scale);
  const bool isGood = read.ec == std::errc{} && read.ptr == end && 0.25 <= scale && scale <= 16;
  return isGood ? "" : "'" + text + "' is not a number from 0.25 to 16";
}

std::string checkDate(const std::string& text) {
  return foundation::dateFromRFC3339(text) ? "" : "'" + text + "' is not a date such as 2026-11-16T15:41:35Z";
}

}  // namespace

std::filesystem::path configurationFile(const std::string& name) {
  const char* const config = std::getenv("XDG_CONFIG_HOME");
  const char* const home = std::getenv("HOME");
  // The XDG base directory specification: a path that is not absolute is to be ignored.
  if (config && *config == '/') return std::filesystem::path{config} / name;
  return home && *home ? std::filesystem::path{home} / ".config" / name : std::filesystem::path{};
}

void addOptions(CLI::App& app, Options& options) {
  app.add_option("--family", options.family, "Size: small, medium (default) or large")
      ->check(CLI::IsMember({"small", "medium", "large"}))
      ->type_name("WORD");
  addWord(
      app, "--anchor", options.anchor, anchors,
      "Place: top-left, top, top-right (default), left, center, right, bottom-left, bottom or bottom-right");
  app.add_option("--margin", options.margin,
                 "Points between the tile and the edges that it is anchored to (16)")
      ->check(CLI::Range(0, 10000))
      ->type_name("POINTS");
  app.add_option("--monitor", options.monitor,
                 "Connector of the monitor to show it on (default: the primary one)")
      ->type_name("NAME");
  addWord(app, "--layer", options.layer, layers,
          "Layer: desktop (below all windows, the default), normal or above");
  app.add_option("--scale", options.scale, "Pixels per point (default: the monitor's scale)")
      ->check(checkScale)
      ->type_name("FACTOR");
  app.add_flag("--plain-window", options.plainWindow,
               "On Wayland, a window among others, even where something better is to be had");
  app.add_option("--at", options.at,
                 "Use this date instead of the current time: the tile's clock stands still")
      ->check(checkDate)
      ->type_name("DATE");
  app.add_flag("--list-monitors", options.listMonitors, "Print the monitors by connector, then exit");
  app.add_option("--autostart", options.autostart,
                 "Start at every login (on) or no more (off): print what was done, then exit")
      ->check(CLI::IsMember({"on", "off"}))
      ->type_name("WORD")
      ->configurable(false);
  app.allow_config_extras(CLI::config_extras_mode::error);
}

void readSettings(CLI::App& app) {
  const auto path = configurationFile("tarno/desktop.ini");
  std::error_code missing;
  if (!std::filesystem::exists(path, missing)) return;
  constexpr std::size_t most = 64 * 1024;
  std::istringstream settings{program::readFile(path, most)};
  try {
    app.clear();
    app.parse_from_stream(settings);
  } catch (const CLI::Error& error) {
    throw program::Failure{EX_CONFIG, path.string() + ": " + error.what()};
  }
}

}  // namespace desktop
