// Reads any settings file. It must be accepted, or refused with a message of one line.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tarno/common/failure.hpp"
#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/settings.hpp"

namespace {

/// The settings file of this process, in a temporary folder.
class SettingsFile {
 public:
  SettingsFile() {
    std::string name = std::filesystem::temp_directory_path() / "settings-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    home_ = name;
    std::filesystem::create_directory(home_ / "tarno");
    setenv("XDG_CONFIG_HOME", name.c_str(), 1);
  }
  ~SettingsFile() { std::filesystem::remove_all(home_); }

  void hold(std::string_view bytes) const {
    std::ofstream{home_ / "tarno/desktop.ini", std::ios::binary} << bytes;
  }

 private:
  std::filesystem::path home_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const SettingsFile file;
  file.hold({reinterpret_cast<const char*>(data), size});
  CLI::App app;
  desktop::Options options;
  desktop::addOptions(app, options);
  try {
    desktop::readSettings(app);
  } catch (const program::Failure& failure) {
    if (failure.exitCode() != EX_CONFIG) std::abort();
    return 0;
  }
  if (options.listMonitors || options.autostart) std::abort();  // these are options of the command line only
  const auto& [top, right, bottom, left] = options.margin;
  if (std::min({top, right, bottom, left}) < 0 ||
      (options.scale && !(*options.scale >= 0.25 && *options.scale <= 16)))
    std::abort();
  return 0;
}
