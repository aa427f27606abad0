#include "tarno/tarno-desktop/options.hpp"

#include <charconv>
#include <map>
#include <string_view>

#include "tarno/common/command_line.hpp"
#include "tarno/common/dates.hpp"

namespace desktop {
namespace {

constexpr int mostMargin = 10000;  // points

const std::map<std::string, Layer> layers{
    {"desktop", Layer::desktop}, {"normal", Layer::normal}, {"above", Layer::above}};

const std::map<std::string, Anchor> anchors{
    {"top-left", {0, 0}},    {"top", {0.5, 0}},      {"top-right", {1, 0}},
    {"left", {0, 0.5}},      {"center", {0.5, 0.5}}, {"right", {1, 0.5}},
    {"bottom-left", {0, 1}}, {"bottom", {0.5, 1}},   {"bottom-right", {1, 1}}};

/// Reads one number for all edges, or four. Returns nothing if the text is something else.
std::optional<Margin> readMargin(std::string_view text) {
  std::vector<int> numbers;
  const char *at = text.data(), *const end = at + text.size();
  while (true) {
    const auto [rest, error] = std::from_chars(at, end, numbers.emplace_back());
    if (error != std::errc{} || numbers.back() < 0 || numbers.back() > mostMargin) return {};
    if (rest == end) break;
    if (*rest != ',') return {};
    at = rest + 1;
  }
  if (numbers.size() == 1) numbers.resize(4, numbers[0]);
  if (numbers.size() != 4) return {};
  return Margin{numbers[0], numbers[1], numbers[2], numbers[3]};
}

std::string checkMargin(const std::string& text) {
  if (readMargin(text)) return "";
  return "'" + text + "' is not a whole number from 0 to " + std::to_string(mostMargin) +
         ", or four of them (TOP,RIGHT,BOTTOM,LEFT)";
}

}  // namespace

void addOptions(CLI::App& app, Options& options) {
  const auto add = [&](const char* name, auto& value, const char* type, const char* description) {
    return app.add_option(name, value, description)->type_name(type);
  };
  const auto addWord = [&](const char* name, auto& value, const auto& words, const char* usual,
                           const char* description) {
    const auto use = [&value, &words](const std::string& word) { value = words.at(word); };
    std::vector<std::string> names;
    names.reserve(words.size());
    for (const auto& [word, meaning] : words) names.push_back(word);
    app.add_option_function<std::string>(name, use, description)
        ->check(program::oneOf(names))
        ->type_name("WORD")
        ->default_str(usual);
  };
  add("--family", options.family, "WORD", "Size of the tile")
      ->check(program::oneOf({"small", "medium", "large"}))
      ->capture_default_str();
  addWord("--anchor", options.anchor, anchors, "top-right",
          "Place of the tile on its monitor, clear of panels");
  const auto useMargin = [&options](const std::string& text) { options.margin = *readMargin(text); };
  app.add_option_function<std::string>(
         "--margin", useMargin,
         "Points between the tile and the edges that it is anchored to, from 0 to 10000: one number for all "
         "edges, or TOP,RIGHT,BOTTOM,LEFT")
      ->check(checkMargin)
      ->type_name("POINTS")
      ->default_str("16");
  add("--monitor", options.monitor, "NAME",
      "Connector of the monitor to show the tile on, such as HDMI-1 (default: the primary monitor)")
      ->check([](const std::string& name) { return name.empty() ? "'' is not the name of a monitor" : ""; });
  addWord("--layer", options.layer, layers, "desktop",
          "Layer of the tile: desktop is below all windows, normal is like an ordinary window, which you can "
          "drag, and above is above all windows");
  add("--scale", options.scale, "FACTOR",
      "Pixels per point, a number from 0.25 to 16 (default: the monitor's scale)")
      ->check(program::numberFrom(0.25, 16));
  app.add_flag("--plain-window", options.plainWindow, "On Wayland, always use an ordinary window");
  program::addDateOption(app, "--at", options.at, "Use this date instead of the current time");
  app.add_flag("--list-monitors", options.listMonitors, "Print the monitors by connector, then exit")
      ->configurable(false);
  add("--autostart", options.autostart, "WORD",
      "Start the tile at login: on or off; print what was done, then exit")
      ->check(program::oneOf({"on", "off"}))
      ->configurable(false);
  app.allow_config_extras(CLI::config_extras_mode::error);
}

}  // namespace desktop
