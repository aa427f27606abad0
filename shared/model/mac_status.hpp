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

/// The lock state of the user's Mac as the companion reports it. A companion may report `unknown`, which is
/// not the same as an absent status.
class TarnoMacStatus {
 public:
  enum Case : std::uint8_t { locked, unlocked, locking, unknown };

  constexpr TarnoMacStatus(Case value = unknown) : case_(value) {}
  constexpr operator Case() const { return case_; }

  /// All cases, in declaration order.
  static const std::array<TarnoMacStatus, 4> allCases;

  /// Returns the case whose raw value is exactly `text`; nothing for any other text.
  static std::optional<TarnoMacStatus> fromRawValue(std::string_view text);

  /// Returns the word for the status in records and on command lines: "locked", "unlocked", "locking" or
  /// "unknown".
  std::string_view rawValue() const;

  /// Returns the English word for people: "Locked" and so on.
  std::string_view displayName() const;

  /// Writes one JSON string, the raw value.
  void encode(tarno::Encoder& encoder) const;

  /// Reads the raw value. Throws tarno::DecodingError: typeMismatch if the value is not a string,
  /// dataCorrupted for any other text.
  static TarnoMacStatus decode(const tarno::Decoder& decoder);

 private:
  Case case_;
};

inline constexpr std::array<TarnoMacStatus, 4> TarnoMacStatus::allCases{
    TarnoMacStatus::locked, TarnoMacStatus::unlocked, TarnoMacStatus::locking, TarnoMacStatus::unknown};

/// Gives a status the hash of its raw value.
template <>
struct std::hash<TarnoMacStatus> {
  std::size_t operator()(TarnoMacStatus status) const {
    return std::hash<std::string_view>{}(status.rawValue());
  }
};
