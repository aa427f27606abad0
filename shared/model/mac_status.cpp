#include "shared/model/mac_status.hpp"

#include <string>

#include "foundation/json_decoder.hpp"
#include "foundation/json_encoder.hpp"

std::optional<TarnoMacStatus> TarnoMacStatus::fromRawValue(std::string_view text) {
  for (const auto status : allCases)
    if (status.rawValue() == text) return status;
  return std::nullopt;
}

std::string_view TarnoMacStatus::rawValue() const {
  switch (case_) {
    case locked: return "locked";
    case unlocked: return "unlocked";
    case locking: return "locking";
    case unknown: break;
  }
  return "unknown";
}

std::string_view TarnoMacStatus::displayName() const {
  switch (case_) {
    case locked: return "Locked";
    case unlocked: return "Unlocked";
    case locking: return "Locking";
    case unknown: break;
  }
  return "Unknown";
}

void encode(foundation::Encoder& encoder, TarnoMacStatus status) { encoder.write(status.rawValue()); }

void decode(const foundation::Decoder& decoder, TarnoMacStatus& status) {
  const auto text = decoder.as<std::string>();
  const auto named = TarnoMacStatus::fromRawValue(text);
  if (!named)
    throw decoder.dataCorrupted("\"" + text + "\" is not a status (locked, unlocked, locking or unknown)");
  status = *named;
}
