#include <cstdio>
#include <nlohmann/json.hpp>

#include "commands.hpp"
#include "common/dates.hpp"
#include "common/failure.hpp"
#include "common/output.hpp"
#include "shared/coding/json.hpp"
#include "shared_status.hpp"

namespace status {
namespace {

std::string jsonText(const std::optional<TarnoStoredMacStatus>& stored) {
  nlohmann::ordered_json json;
  if (stored) {
    json["received_at"] = nullptr;
    if (stored->receivedAt) json["received_at"] = program::dateText(*stored->receivedAt);
    json["snapshot"] = nlohmann::ordered_json::parse(TarnoJSON::encoder().encode(stored->snapshot));
  }
  return json.dump(2) + "\n";
}

/// "face seen, watch near, input 3 s ago"
std::string presence(const TarnoMacStatusSnapshot& snapshot) {
  std::string text = snapshot.facePresent.value_or(false) ? "face seen" : "no face";
  text += snapshot.companionPresent.value_or(false) ? ", watch near" : ", no watch";
  if (!snapshot.inputIdleSeconds) return text;
  char idle[64];
  std::snprintf(idle, sizeof idle, ", input idle for %.6g s", *snapshot.inputIdleSeconds);
  return text + idle;
}

std::string textForPeople(const std::optional<TarnoStoredMacStatus>& stored) {
  if (!stored) return "No status\nNothing was saved yet.\n";
  const auto& snapshot = stored->snapshot;
  std::string age = "unknown";
  if (snapshot.ageSeconds) age = std::to_string(*snapshot.ageSeconds) + " s";
  if (stored->receivedAt) age += " (received " + program::dateText(*stored->receivedAt) + ")";
  std::string text = snapshot.statusLine() + "\n";
  text += program::printable(snapshot.detailLine()) + "\n";
  text += "age       " + age + "\n";
  text += "presence  " + presence(snapshot) + "\n";
  text += "device    " + program::printable(displayedDeviceName(snapshot)) + "\n";
  return text;
}

}  // namespace

int show(bool asJSON) {
  const auto [store, stored, fault] = readSharedStatus(foundation::now());
  if (!stored && !fault.empty()) throw program::Failure{EX_UNAVAILABLE, fault};
  program::writeOutput(asJSON ? jsonText(stored) : textForPeople(stored));
  return EX_OK;
}

}  // namespace status
