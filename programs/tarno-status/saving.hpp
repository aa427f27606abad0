#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

/// What the two ways to save a record share.
namespace status {

/// Far more than any record; keeps a wrong file from being swallowed whole.
inline constexpr std::size_t largestRecord = 1 << 20;

/// A record that was read, and one sentence that names the keys in it that hold something and that no record
/// has; empty when there are none.
struct Record {
  TarnoMacStatusSnapshot report;
  std::string complaint;

  static Record decode(const tarno::Decoder& decoder);
};

/// Throws program::Failure, EX_DATAERR, which names the place.
Record decodeRecord(std::string_view text);

/// Saves a report into the shared store. Throws program::Failure with the code that save() has for it.
void saveReport(const TarnoMacStatusSnapshot& report, tarno::Date receivedAt,
                const std::optional<std::string>& mirrorKey);

}  // namespace status
