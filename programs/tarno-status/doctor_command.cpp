#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sysexits.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "tarno/common/child_process.hpp"
#include "tarno/common/dates.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/base_directories.hpp"
#include "tarno/foundation/suite_store.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"
#include "tarno/tarno-status/commands.hpp"
#include "tarno/tarno-status/shared_status.hpp"

namespace status {
namespace {

constexpr std::string_view keys[] = {TarnoMacDefaults::lastStatus, TarnoMacDefaults::lastStatusAt,
                                     TarnoMacDefaults::lastStatusValue,
                                     TarnoMacDefaults::lastStatusMirrorKey};

/// Returns one line of the report: a padded label and its value.
std::string line(std::string_view label, const std::string& text) {
  std::string padded{label};
  padded.resize(std::max<std::size_t>(padded.size() + 1, 26), ' ');
  return padded + program::printable(text) + "\n";
}

std::string itemText(const std::filesystem::path& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) return "missing";
  const passwd* const owner = getpwuid(found.st_uid);
  const std::string name = owner != nullptr ? owner->pw_name : "user " + std::to_string(found.st_uid);
  char mode[8];
  std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(found.st_mode & 07777));
  return "owner " + name + ", mode " + mode;
}

std::string valueText(const std::optional<tarno::DefaultsValue>& value) {
  struct Describer {
    std::string operator()(const tarno::Data& data) const {
      return "data, " + std::to_string(data.bytes.size()) + " bytes";
    }
    std::string operator()(const tarno::Date& date) const { return "date, " + program::dateText(date); }
    std::string operator()(const std::string& text) const {
      return "string, " + std::to_string(text.size()) + " bytes";
    }
    std::string operator()(double) const { return "number"; }
  };
  return value ? std::visit(Describer{}, *value) : "nothing stored";
}

std::string ageText(const std::optional<TarnoStoredMacStatus>& status, tarno::Date now) {
  if (!status) return "no report";
  if (!status->receivedAt) return "unknown: no receipt date is stored";
  if (*status->receivedAt > now) return "received in the future";
  return std::to_string(status->snapshot.ageSeconds.value_or(0)) + " s";
}

/// The result of trying to save.
struct Saving {
  std::string fault;  ///< why a save would fail; empty if it would succeed
  bool lasts = true;  ///< whether a save would survive a power cut
};

/// Tries to save a record that is at least as large as the stored one and most others.
Saving trySaving(const SharedStatus& shared, tarno::Date now) {
  constexpr std::size_t ordinarySize = 4096;
  const auto stored = shared.store ? shared.store->data(TarnoMacDefaults::lastStatus) : std::nullopt;
  const std::string record(std::max(ordinarySize, stored ? stored->bytes.size() : 0), ' ');
  try {
    return {"",
            tarno::rehearseSavingToSuite(TarnoMacDefaults::appGroupIdentifier,
                                         {{std::string{TarnoMacDefaults::lastStatus}, tarno::Data{record}},
                                          {std::string{TarnoMacDefaults::lastStatusAt}, now}})};
  } catch (const tarno::SuiteError& error) {
    return {error.what()};
  }
}

std::string savingText(const Saving& saving) {
  if (!saving.fault.empty()) return "would fail: " + saving.fault;
  return saving.lasts ? "works" : "works, but a power cut may undo it: the file system cannot sync a folder";
}

/// Runs the program `name` of this project, and waits at most `limit` for its end.
program::ProcessResult ask(const char* name, const std::vector<std::string>& arguments,
                           std::chrono::seconds limit) {
  try {
    return program::ChildProcess{program::siblingProgram(name), arguments, limit}.finish();
  } catch (const std::system_error& error) {
    return {"", "", "cannot be run: " + error.code().message()};
  }
}

/// Returns the font of the tile, as reported by the program that draws it.
std::string fontText() {
  const auto [output, errors, failure] = ask("tarno-widget", {"fonts"}, std::chrono::seconds{10});
  const auto text = failure.empty() ? output + errors : "unknown: tarno-widget " + failure;
  return text.substr(0, text.find('\n'));
}

/// Returns which parts of the confinement of tarno-widget the kernel supports.
std::string confinementText() {
  const std::uint32_t action = SECCOMP_RET_ERRNO;
  const bool hasSeccomp = syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0;
  const bool hasLandlock =
      syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) > 0;
  if (hasSeccomp && hasLandlock) return "complete";
  if (!hasSeccomp && !hasLandlock) return "none: the kernel has neither seccomp nor landlock";
  return hasSeccomp ? "without landlock, which the kernel lacks" : "without seccomp, which the kernel lacks";
}

/// Returns the XDG_DATA_HOME of the user's session; empty if there is no such session.
std::filesystem::path sessionDataHome() {
  const auto [output, errors, failure] =
      ask("systemctl", {"--user", "show-environment"}, std::chrono::seconds{2});
  constexpr std::string_view name = "\nXDG_DATA_HOME=";
  const auto text = "\n" + output;
  const auto start = text.find(name);
  if (!failure.empty() || start == text.npos) return {};
  const auto value = text.substr(start + name.size());
  return value.substr(0, value.find('\n'));
}

/// Another store of the user, in which programs with another XDG_DATA_HOME save, such as those that ssh
/// starts.
struct OtherStore {
  std::filesystem::path file;
  tarno::Date savedAt;
};

std::optional<OtherStore> findOtherStore(const std::filesystem::path& ownFile) {
  for (const auto& home : {sessionDataHome(), tarno::standardDataHome().value_or("")}) {
    const auto file = home / TarnoMacDefaults::appGroupIdentifier / ownFile.filename();
    std::error_code error;
    if (!home.is_absolute() || std::filesystem::equivalent(file, ownFile, error)) continue;
    const auto savedAt = std::filesystem::last_write_time(file, error);
    if (!error)
      return OtherStore{file,
                        std::chrono::floor<tarno::Date::duration>(std::chrono::file_clock::to_sys(savedAt))};
  }
  return std::nullopt;
}

/// Returns what the tile shows and, unless all is well, why.
std::string verdict(const SharedStatus& shared, tarno::Date now) {
  const auto& status = shared.status;
  const auto says = " tile says \"" + tileReport(status).statusLine + "\"";
  if (!status && shared.fault.empty())
    return "Nothing was saved yet, so the" + says + "; save a report with tarno-status save.";
  if (!status) return "The" + says + ": " + shared.fault + ".";
  if (!shared.fault.empty())
    return "Only the plain value is used, so the" + says + ": " + shared.fault +
           "; the next save repairs it.";
  if (!status->receivedAt)
    return "The receipt date is missing, so the age of the report is unknown; the" + says + ".";
  if (*status->receivedAt > now)
    return "The receipt date is in the future: the report does not turn stale before " +
           program::dateText(TarnoStatusFreshness::staleFrom(*status->receivedAt)) +
           ", unless a new one is saved; the" + says + ".";
  if (status->snapshot.isStale() && now < TarnoStatusFreshness::staleFrom(*status->receivedAt))
    return "The report itself says that it is stale, so the" + says +
           " until the companion saves one that does not.";
  if (status->snapshot.isStale())
    return "The last report is stale, so the" + says + " until the companion saves a new one.";
  return "The report is fresh: the" + says + ".";
}

}  // namespace

int doctor() {
  const auto now = tarno::now();
  const auto shared = readSharedStatus(now);
  const auto saving = trySaving(shared, now);
  const auto location = tarno::suiteLocation(TarnoMacDefaults::appGroupIdentifier);
  const auto other = location ? findOtherStore(location->file) : std::nullopt;

  std::string text = line("store", location ? location->file.string() : "unknown");
  text += line("folder", location ? itemText(location->directory) : "missing");
  text += line("file", location ? itemText(location->file) : "missing");
  for (const auto key : keys)
    text += line(key, valueText(shared.store ? shared.store->object(key) : std::nullopt));
  text += line("report's age", ageText(shared.status, now));
  text += line("reading", shared.fault.empty() ? "works" : "fails: " + shared.fault);
  text += line("saving", savingText(saving));
  if (other)
    text += line("another store", other->file.string() + ", saved " + program::dateText(other->savedAt));
  text += line("font", fontText());
  text += line("confinement", confinementText());

  const bool isWell = isFresh(shared.status) && shared.status->receivedAt <= now && saving.fault.empty();
  const auto warning = saving.fault.empty() ? "" : " A save would fail: " + saving.fault + ".";
  const auto isElsewhere = other && (!shared.status || other->savedAt > shared.status->receivedAt);
  const auto elsewhere =
      isElsewhere
          ? " The other store is newer: whatever saves there has another XDG_DATA_HOME than this program."
          : "";
  const auto praise = isWell && shared.fault.empty() && !isElsewhere ? "All is well. " : "";
  program::writeOutput(text + "\n" + program::printable(praise + verdict(shared, now) + warning + elsewhere) +
                       "\n");
  return isWell ? EX_OK : EX_UNAVAILABLE;
}

}  // namespace status
