#include "tarno/tarno-widget/tile.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <sstream>

#include "support/pixels.hpp"
#include "tarno/render/image.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/ui/symbols/symbol.hpp"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using widgetkit::WidgetFamily;

constexpr tarno::Date now = sys_days{2026y / November / 16} + 15h;

void write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

/// Returns the largest difference of a channel. Multiplies channels by alpha, because the colour of an
/// invisible pixel does not count.
int difference(const Pixels::Pixel& a, const Pixels::Pixel& b) {
  int largest = std::abs(a[3] - b[3]);
  for (std::size_t i = 0; i < 3; ++i) largest = std::max(largest, std::abs(a[i] * a[3] - b[i] * b[3]) / 255);
  return largest;
}

/// Compares `png` with the reference picture tests/references/NAME.png, or replaces that if the environment
/// has TARNO_RENEW_REFERENCES=1. Other builds of the drawing libraries round differently, so pixels may
/// differ by 12, which an edge that moves by a twentieth of a pixel does; one in 10,000 may differ by more. A
/// picture that differs is written to the folder "reference-failures" in the working directory.
void expectReference(const std::string& png, const std::string& name) {
  const fs::path reference = fs::path{TARNO_REFERENCES} / (name + ".png");
  if (const char* renew = std::getenv("TARNO_RENEW_REFERENCES"); renew && *renew == '1')
    return write(reference, png);
  const Pixels expected = Pixels::decode((std::stringstream{} << std::ifstream{reference}.rdbuf()).str());
  const Pixels actual = Pixels::decode(png);
  std::size_t large = actual.rows.size();
  if (actual.width == expected.width && actual.height == expected.height)
    large = std::inner_product(actual.rows.begin(), actual.rows.end(), expected.rows.begin(), std::size_t{0},
                               std::plus{},
                               [](const auto& a, const auto& b) { return difference(a, b) > 12 ? 1u : 0u; });
  if (large <= actual.rows.size() / 10'000) return;
  const fs::path found = fs::absolute("reference-failures") / (name + ".png");
  write(found, png);
  ADD_FAILURE() << found << " differs from " << reference;
}

TEST(Tile, LooksAsItDid) {
  const tarno::ClockOverride clock{now};
  render::TextEngine text;
  const std::tuple<const char*, WidgetFamily, double, tarno::Date::duration, const char*> rows[] = {
      {"locked-medium", WidgetFamily::systemMedium, 2, 4s,
       R"({"device_name": "Kivo's Mac", "status": "locked", "reason": "Mac locked.", "face_present": true,
           "companion_present": true, "input_idle_seconds": 3})"},
      {"stale-small", WidgetFamily::systemSmall, 1, 3h,
       R"({"status": "locked", "face_present": true, "stale": true})"},
      {"locking-large", WidgetFamily::systemLarge, 1, 61s,
       R"({"device_name": "書斎のマック 🖥️ حاسوب المكتب", "status": "locking", "reason": "Nobody in front of the Mac; )"
       R"(locking it in a few seconds unless a face, the watch or some input is noticed before then."})"},
      {"none-medium", WidgetFamily::systemMedium, 1, 0s, ""},
      {"unlocked-small", WidgetFamily::systemSmall, 3, 0s, R"({"status": "unlocked"})"}};
  for (const auto& [name, family, scale, age, json] : rows) {
    TarnoMacWidgetEntry entry{.date = now};
    if (*json) entry = {now, TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(json), now - age};
    const auto scene = extension::tileScene(TarnoMacWidgetView{entry}.body({family}), family, text);
    expectReference(encodeImage(scene, text, render::ImageFormat::png, scale), name);
  }
}

TEST(Tile, SymbolsLookAsTheyDid) {
  ui::Scene sheet{.size = {350, 140}, .items = {}, .accessibility = {}};
  for (const ui::Symbol& symbol : ui::allSymbols()) {
    const auto [row, column] = std::div(static_cast<int>(sheet.items.size()), 5);
    const ui::Point corner{column * 70.0 + 3, row * 70.0 + 3};
    sheet.items.emplace_back(ui::FillPath{symbol.outline.placed(48, corner), ui::black});
  }
  render::TextEngine text;
  expectReference(encodeImage(sheet, text, render::ImageFormat::png, 1), "symbols");
}

}  // namespace
