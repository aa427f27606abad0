#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "x11/monitors.hpp"
#include "x11/pixels.hpp"
#include "x11/window_manager.hpp"
#include "x11/work_area.hpp"

namespace desktop::x11 {
namespace {

using namespace std::string_literals;

TEST(FreeArea, IsWhatPanelsLeaveOfTheirMonitor) {
  const Area screen{0, 0, 2048, 768}, first{0, 0, 1024, 768}, second{1024, 0, 1024, 600};
  using Strut = std::vector<std::uint32_t>;
  const auto atTop = [](std::uint32_t depth, std::uint32_t start, std::uint32_t end) {
    return PanelWindow{{}, {0, 0, depth, 0, 0, 0, 0, 0, start, end, 0, 0}};
  };
  const PanelWindow left{{}, Strut{1064, 0, 0, 0, 0, 599, 0, 0, 0, 0, 0, 0}};
  const PanelWindow right{{}, Strut{0, 1064, 0, 0, 0, 0, 0, 767, 0, 0, 0, 0}};
  const PanelWindow bottom{{}, Strut{0, 0, 0, 198, 0, 0, 0, 0, 0, 0, 1024, 2047}},
      edge{{}, Strut{0, 0, 0, 30}};
  const PanelWindow placed{{1024, 0, 1024, 24}, {0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 0, 0}};
  const PanelWindow bar{{0, 740, 1024, 28}, {}}, highBar{{0, 730, 1024, 38}, {}},
      noPanel{{0, 750, 99, 10}, {}};
  struct Case {
    const char* name;
    std::vector<PanelWindow> windows;
    std::optional<Area> workArea;
    Area first, second;
  };
  const std::vector<Case> cases{
      {"nothing", {}, {}, first, second},
      {"top of the first", {atTop(40, 0, 1023)}, {}, {0, 40, 1024, 728}, second},
      {"top of the second", {atTop(40, 1024, 2047)}, {}, first, {1024, 40, 1024, 560}},
      {"the deeper of two", {atTop(40, 0, 1023), atTop(25, 0, 99)}, {}, {0, 40, 1024, 728}, second},
      {"left of the second", {left}, {}, first, {1064, 0, 984, 600}},
      {"right of the first", {right}, {}, {0, 0, 984, 768}, second},
      {"bottom of the second, which is less high", {bottom}, {}, first, {1024, 0, 1024, 570}},
      {"a whole edge", {edge}, {}, {0, 0, 1024, 738}, second},
      {"no range, but a place", {placed}, {}, first, {1024, 24, 1024, 576}},
      {"a work area alone", {}, Area{0, 24, 2048, 744}, {0, 24, 1024, 744}, {1024, 24, 1024, 576}},
      {"a work area at the sides", {}, Area{10, 0, 2018, 768}, {10, 0, 1014, 768}, {1024, 0, 1004, 600}},
      {"a work area for a bar", {bar}, Area{0, 0, 2048, 740}, {0, 0, 1024, 740}, second},
      {"a bar that does not fit", {highBar}, Area{0, 0, 2048, 100}, {0, 0, 1024, 100}, {1024, 0, 1024, 600}},
      {"a work area for a strut", {atTop(40, 0, 1023)}, Area{0, 40, 2048, 728}, {0, 40, 1024, 728}, second},
      {"a strut in part",
       {atTop(40, 0, 1023)},
       Area{0, 50, 2048, 718},
       {0, 50, 1024, 718},
       {1024, 50, 1024, 550}},
      {"a window that is no panel", {noPanel}, Area{0, 0, 2048, 740}, {0, 0, 1024, 740}, second},
  };
  for (const auto& [name, windows, workArea, ofFirst, ofSecond] : cases) {
    EXPECT_EQ(freeArea(first, screen, windows, workArea), ofFirst) << name;
    EXPECT_EQ(freeArea(second, screen, windows, workArea), ofSecond) << name;
  }
}

/// One of the session's settings.
std::string setting(char type, const std::string& name, const std::string& value, bool isBigEndian = false) {
  const auto size = static_cast<char>(name.size());
  const std::string length = isBigEndian ? std::string{'\0', size} : std::string{size, '\0'};
  return std::string{type, '\0'} + length + name + std::string(-name.size() % 4, '\0') + "\7\7\7\7" + value;
}

TEST(SessionScale, IsReadFromSettings) {
  const auto little = "\0\0\0\0\1\0\0\0\2\0\0\0"s, big = "\1\0\0\0\0\0\0\1\0\0\0\2"s;
  const auto dots = setting(0, "Xft/DPI", "\0\340\1\0"s);  // 120 * 1024
  const auto factor = setting(0, "Gdk/WindowScalingFactor", "\2\0\0\0"s);
  const auto name = setting(1, "Net/ThemeName", "\7\0\0\0Xft/DPI\0"s);
  const std::vector<std::pair<std::string, std::optional<double>>> cases{
      {little + dots, 1.25},
      {big + setting(0, "Xft/DPI", "\0\2\100\0"s, true), 1.5},
      {little + dots + factor, 2},
      {little + factor, 2},
      {little + setting(0, "Net/DoubleClickTime", "\1\0\0\0"s) + dots, 1.25},
      {little + dots.substr(0, dots.size() - 1), {}},
      {little + name, {}},
      {little + setting(1, "Xft/DPI", "\0\340\1\0"s), {}},
      {little + setting(0, "Xft/DPIs", "\0\340\1\0"s), {}},
      {"Xft/DPI and no more than that", {}},
      {"", {}}};
  for (const auto& [settings, scale] : cases)
    EXPECT_EQ(settingsScale(settings), scale) << ::testing::PrintToString(settings);
}

TEST(SessionScale, IsReadFromResources) {
  const std::vector<std::pair<std::string, std::optional<double>>> cases{
      {"Xft.dpi:\t144\n", 1.5}, {"*customization:\t-color\nXft.dpi: 120\nXft.hinting: 1\n", 1.25},
      {"Xft.dpi:96", 1},        {"MyXft.dpi: 192\n", {}},
      {"Xft.dpi: no\n", {}},    {"Xft.dpi: -96\n", {}},
      {"Xft.dpi:", {}},         {"", {}}};
  for (const auto& [resources, scale] : cases) EXPECT_EQ(resourceScale(resources), scale) << resources;
}

TEST(WindowKind, DependsOnTheWindowManager) {
  using enum WindowKind;
  for (const auto* const name :
       {"", "Openbox", "Xfwm4", "Fluxbox", "IceWM 3.3.1 (Linux/x86_64)", "i3", "awesome"}) {
    EXPECT_EQ(windowKind(Layer::desktop, name), unmanaged) << name;
    EXPECT_EQ(windowKind(Layer::above, name), unmanaged) << name;
  }
  for (const auto* const name : {"GNOME Shell", "KWin", "Metacity (Marco)", "Mutter(Budgie)"}) {
    EXPECT_EQ(windowKind(Layer::desktop, name), desktop) << name;
    EXPECT_EQ(windowKind(Layer::above, name), utility) << name;
  }
  EXPECT_EQ(windowKind(Layer::normal, "Openbox"), utility);
}

/// Three rows of four pixels and one that is not shown: a rounded top, half and a little less than half
/// opaque.
Picture roundedPicture() {
  constexpr std::uint32_t full = 0xff102030, half = 0x80402010, less = 0x7f402010;
  const std::array<std::uint32_t, 15> pixels{0,    half, less, 0,    1,    full, full, full,
                                             full, 1,    full, full, full, full, 1};
  Picture picture{foundation::FileDescriptor{memfd_create("picture", 0)}, 4, 3, 20, 1};
  EXPECT_EQ(write(picture.memory.get(), pixels.data(), sizeof pixels), ssize_t{sizeof pixels});
  return picture;
}

TEST(Pixels, AreThoseOfThePictureOrOpaque) {
  const auto picture = roundedPicture();
  using Strip = std::vector<std::uint32_t>;
  EXPECT_EQ((Pixels{picture, 4, 3, false}.strip(0, 1)), (Strip{0, 0x80402010, 0x7f402010, 0}));
  EXPECT_EQ((Pixels{picture, 4, 3, true}.strip(0, 1)), (Strip{0, 0xff7f3f1f, 0xff804020, 0}));
  EXPECT_EQ((Pixels{picture, 4, 3, false}.strip(2, 9)), (Strip(4, 0xff102030)));
  EXPECT_EQ((Pixels{picture, 8, 6, false}.strip(1, 1)),
            (Strip{0, 0, 0x80402010, 0x80402010, 0x7f402010, 0x7f402010, 0, 0}));
}

TEST(Pixels, HaveAnOutline) {
  const auto picture = roundedPicture();
  EXPECT_EQ((Pixels{picture, 4, 3, true}.outline()), (std::vector<Area>{{1, 0, 1, 1}, {0, 1, 4, 2}}));
  EXPECT_EQ((Pixels{picture, 8, 6, true}.outline()), (std::vector<Area>{{2, 0, 2, 2}, {0, 2, 8, 4}}));
}

}  // namespace
}  // namespace desktop::x11
