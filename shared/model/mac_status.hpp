#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace tarno {
class Decoder;
class Encoder;
}  // namespace tarno

/// The lock state of the user's Mac as the companion application reports it. `unknown` is a state that a
/// writer may report; where a status is optional, its absence is something else.
class TarnoMacStatus {
 public:
  enum Case : std::uint8_t { locked, unlocked, locking, unknown };

  constexpr TarnoMacStatus(Case value = unknown) : case_(value) {}
  constexpr operator Case() const { return case_; }

  /// In declaration order.
  static const std::array<TarnoMacStatus, 4> allCases;

  /// The case whose raw value is `text`, byte for byte; nothing for every other text.
  static std::optional<TarnoMacStatus> fromRawValue(std::string_view text);

  /// The only form in which a status leaves the process: "locked", "unlocked", "locking", "unknown".
  std::string_view rawValue() const;

  /// In English, for people: "Locked" and so on.
  std::string_view displayName() const;

  /// Writes one JSON string, the raw value.
  void encode(tarno::Encoder& encoder) const;

  /// Reads it. Throws tarno::DecodingError: typeMismatch for what is not a string, dataCorrupted for any text
  /// but a raw value.
  static TarnoMacStatus decode(const tarno::Decoder& decoder);

 private:
  Case case_;
};

inline constexpr std::array<TarnoMacStatus, 4> TarnoMacStatus::allCases{
    TarnoMacStatus::locked, TarnoMacStatus::unlocked, TarnoMacStatus::locking, TarnoMacStatus::unknown};

/// Hashes as the raw value does.
template <>
struct std::hash<TarnoMacStatus> {
  std::size_t operator()(TarnoMacStatus status) const {
    return std::hash<std::string_view>{}(status.rawValue());
  }
};
