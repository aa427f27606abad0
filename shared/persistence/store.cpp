#include <cstdio>
#include <mutex>
#include <utility>

#include "shared/persistence/mac_defaults.hpp"

namespace {

std::mutex& appGroupFallbackLock() {
  static std::mutex lock;
  return lock;
}

/// Guarded by appGroupFallbackLock.
bool loggedAppGroupFallback = false;

void reportFallbackOnce() {
  bool alreadyLogged = false;
  {
    const std::scoped_lock guard{appGroupFallbackLock()};
    alreadyLogged = std::exchange(loggedAppGroupFallback, true);
  }
  if (alreadyLogged) return;
  const std::string line = "ERROR: TarnoMacDefaults could not initialise app-group UserDefaults '" +
                           std::string{TarnoMacDefaults::appGroupIdentifier} +
                           "'. Widget/app status sharing is broken — check entitlements and code signing.\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

}  // namespace

std::shared_ptr<foundation::UserDefaults> TarnoMacDefaults::store() {
  if (auto shared = foundation::UserDefaults::suite(appGroupIdentifier)) return shared;
  reportFallbackOnce();
  return foundation::UserDefaults::standard();
}
