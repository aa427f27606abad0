#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/mac_status.hpp"

/// A report about the status of the user's Mac. The companion and the widget exchange it as JSON, in the
/// schema "tarno.remote.v1". Every field is optional and absent at first. A value type; any thread.
struct TarnoMacStatusSnapshot {
  std::optional<std::string> schema;      ///< the record format; not checked when reading
  std::optional<std::string> app;         ///< the writing application
  std::optional<std::string> event;       ///< a token for what led to the report
  std::optional<std::string> deviceID;    ///< which Mac
  std::optional<std::string> deviceName;  ///< which Mac, for people
  std::optional<tarno::Date> seenAt;      ///< when the writer saw the status, by the writer's clock
  std::optional<TarnoMacStatus> status;
  std::optional<std::string> reason;       ///< a short explanation for people
  std::optional<std::string> source;       ///< the part of the writer that produced the status
  std::optional<std::int64_t> confidence;  ///< on a scale of the writer's own
  std::optional<bool> facePresent;         ///< a face was seen
  std::optional<bool> companionPresent;    ///< the paired watch is near
  std::optional<double> inputIdleSeconds;  ///< the time since the last input
  std::optional<bool> stale;               ///< the report is too old to be trusted
  std::optional<std::int64_t> ageSeconds;  ///< the age of the status
  std::optional<std::string> message;      ///< a text for people, shown if there is no `reason`

  /// The keys of the record: the sixteen JSON names, in the order of the fields.
  struct CodingKeys {
    static const std::array<std::string_view, 16> all;
  };

  /// Returns whether `stale` is present and true.
  bool isStale() const { return stale.value_or(false); }

  /// Returns the status to show: unknown if the report is stale or has no status.
  TarnoMacStatus resolvedStatus() const;

  /// Returns the status in one or two words, for people.
  std::string statusLine() const;

  /// Returns one line that explains the status: why it is stale, or the reason, the message or a fixed text.
  std::string detailLine() const;

  /// Returns a copy judged by the local clock: its age counts from `receivedAt`, and `stale` is set if the
  /// age in whole seconds exceeds `staleAfter`. A stale snapshot stays stale. Without `receivedAt` the copy
  /// is unchanged.
  TarnoMacStatusSnapshot withLocalFreshness(std::optional<tarno::Date> receivedAt, tarno::Date now,
                                            tarno::TimeInterval staleAfter) const;

  /// Compares all fields: texts by Unicode canonical equivalence, everything else exactly.
  bool operator==(const TarnoMacStatusSnapshot& other) const;

  /// Writes one JSON object; absent fields are left out. Throws tarno::EncodingError for an
  /// `inputIdleSeconds` that is not finite and for a text that is not UTF-8.
  void encode(tarno::Encoder& encoder) const;

  /// Reads one JSON object. A missing key or a null leaves the field absent; other keys are ignored. Throws
  /// tarno::DecodingError for the first field that does not fit.
  static TarnoMacStatusSnapshot decode(const tarno::Decoder& decoder);
};
