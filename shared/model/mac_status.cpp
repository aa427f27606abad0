#include "tarno/shared/model/mac_status.hpp"

#include <string>

#include "tarno/foundation/json_decoder.hpp"
#include "tarno/foundation/json_encoder.hpp"

namespace {

struct Words {
  std::string_view rawValue;
  std::string_view displayName;
};

/// The words of each status, in the order of the cases.
constexpr std::array<Words, TarnoMacStatus::allCases.size()> words{
    {{"locked", "Locked"}, {"unlocked", "Unlocked"}, {"locking", "Locking"}, {"unknown", "Unknown"}}};

}  // namespace

std::optional<TarnoMacStatus> TarnoMacStatus::fromRawValue(std::string_view text) {
  for (const auto status : allCases)
    if (status.rawValue() == text) return status;
  return std::nullopt;
}

std::string_view TarnoMacStatus::rawValue() const { return words[case_].rawValue; }

std::string_view TarnoMacStatus::displayName() const { return words[case_].displayName; }

void TarnoMacStatus::encode(tarno::Encoder& encoder) const { encoder.write(rawValue()); }

TarnoMacStatus TarnoMacStatus::decode(const tarno::Decoder& decoder) {
  const auto text = decoder.as<std::string>();
  const auto status = fromRawValue(text);
  return status ? *status : throw decoder.dataCorrupted("\"" + text + "\" is not a status");
}
