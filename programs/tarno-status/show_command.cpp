#include <cstdio>

#include "tarno/common/dates.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/shared/model/status_display.hpp"
#include "tarno/tarno-status/commands.hpp"
#include "tarno/tarno-status/line_format.hpp"
#include "tarno/tarno-status/shared_status.hpp"

namespace status {
namespace {

/// Returns a text such as "face seen, watch near, input 3 s ago".
std::string presence(const TarnoMacStatusSnapshot& snapshot) {
  std::string text = snapshot.facePresent.value_or(false) ? "face seen" : "no face";
  text += snapshot.companionPresent.value_or(false) ? ", watch near" : ", no watch";
  if (!snapshot.inputIdleSeconds) return text;
  char idle[64];
  std::snprintf(idle, sizeof idle, ", input idle for %.6g s", *snapshot.inputIdleSeconds);
  return text + idle;
}

std::string textForPeople(const std::optional<TarnoStoredMacStatus>& stored) {
  if (!stored) return std::string{TarnoStatusDisplay::noStatus} + "\nNothing was saved yet.\n";
  const auto& snapshot = stored->snapshot;
  std::string age = "unknown";
  if (snapshot.ageSeconds) age = std::to_string(*snapshot.ageSeconds) + " s";
  if (stored->receivedAt) age += " (received " + program::dateText(*stored->receivedAt) + ")";
  std::string text = snapshot.statusLine() + "\n";
  text += program::printable(snapshot.detailLine()) + "\n";
  text += "age       " + age + "\n";
  text += "presence  " + presence(snapshot) + "\n";
  text += "device    " + program::printable(TarnoStatusDisplay::deviceName(snapshot)) + "\n";
  return text;
}

/// Returns the last report; nothing if none was saved yet. Throws Failure if something is stored that cannot
/// be read.
std::optional<TarnoStoredMacStatus> readStatus() {
  const auto shared = readSharedStatus(tarno::now());
  if (!shared.status && !shared.fault.empty()) throw program::Failure{EX_UNAVAILABLE, shared.fault};
  return shared.status;
}

}  // namespace

int show(bool asJSON) {
  const auto stored = readStatus();
  program::writeOutput(asJSON ? jsonText(stored, 2) + "\n" : textForPeople(stored));
  return EX_OK;
}

int check(std::optional<TarnoMacStatus> expected) {
  constexpr int no = 1;  // like test(1)
  const auto stored = readStatus();
  if (!isFresh(stored)) return no;
  return !expected || *expected == stored->snapshot.resolvedStatus() ? EX_OK : no;
}

}  // namespace status
