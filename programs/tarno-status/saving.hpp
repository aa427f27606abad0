#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

/// Functions that save() and follow() share.
namespace status {

/// The maximum size of a record in bytes. It is larger than any real record, and rejects a wrong file early.
inline constexpr std::size_t largestRecord = 1 << 20;

/// A decoded record, and one sentence that names the unknown keys in it; empty if there are none.
struct Record {
  TarnoMacStatusSnapshot report;
  std::string complaint;

  static Record decode(const tarno::Decoder& decoder);
};

/// Returns the record in `text`, which is JSON. Throws program::Failure (EX_DATAERR), which names the place
/// of the error.
Record decodeRecord(std::string_view text);

/// Saves a report into the shared store. Throws program::Failure with the code that save() documents.
void saveReport(const TarnoMacStatusSnapshot& report, tarno::Date receivedAt,
                const std::optional<std::string>& mirrorKey);

}  // namespace status
