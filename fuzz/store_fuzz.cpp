// Loads any file as the store. The next save must repair it, and keep the bytes of a damaged file.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tarno/foundation/suite_location.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"

namespace {

namespace fs = std::filesystem;

/// A store of this process, in a temporary folder.
class Store {
 public:
  Store() {
    std::string name = fs::temp_directory_path() / "store-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    home_ = name;
    setenv("XDG_DATA_HOME", name.c_str(), 1);
    file_ = tarno::suiteLocation(TarnoMacDefaults::appGroupIdentifier)->file;
  }
  ~Store() { fs::remove_all(home_); }

  void hold(std::string_view bytes) const {
    fs::remove_all(file_.parent_path());
    fs::create_directory(file_.parent_path());
    fs::permissions(file_.parent_path(), fs::perms::owner_all);
    std::ofstream{file_, std::ios::binary} << bytes;
    fs::permissions(file_, fs::perms::owner_read | fs::perms::owner_write);
  }

  /// Returns whether the folder has a file of another name with these bytes.
  bool hasSetAside(std::string_view bytes) const {
    for (const auto& entry : fs::directory_iterator{file_.parent_path()}) {
      std::ifstream stream{entry.path(), std::ios::binary};
      if (entry.path() != file_ && std::string(std::istreambuf_iterator<char>{stream}, {}) == bytes)
        return true;
    }
    return false;
  }

 private:
  fs::path home_, file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Store store;
  const std::string bytes{reinterpret_cast<const char*>(data), size};
  store.hold(bytes);
  const tarno::Date now{std::chrono::seconds{1794844895}};
  const auto diagnosed = TarnoMacDefaults::diagnoseStatus(*TarnoMacDefaults::store(), now);
  const auto loaded = TarnoMacDefaults::loadStatus(*TarnoMacDefaults::store(), now);
  if (loaded.has_value() != diagnosed.status.has_value()) std::abort();

  const TarnoMacStatusSnapshot report{.deviceName = "Kivo's Mac", .status = TarnoMacStatus::locked};
  TarnoMacDefaults::saveStatus(report, now);
  const auto saved = TarnoMacDefaults::loadStatus(*TarnoMacDefaults::store(), now);
  if (!saved || saved->snapshot.deviceName != report.deviceName || saved->receivedAt != now) std::abort();
  const bool isDamaged = diagnosed.fault.find("damaged") != std::string::npos;
  if (isDamaged && !store.hasSetAside(bytes)) std::abort();
  return 0;
}
