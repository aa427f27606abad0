#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "foundation/date.hpp"

/// The commands of tarno-status. Each returns the program's exit code and throws program::Failure.
namespace status {

struct SaveOptions {
  std::filesystem::path file = "-";            ///< "-" is standard input
  std::optional<foundation::Date> receivedAt;  ///< now when absent
  std::optional<std::string> mirrorKey;
};

/// Decodes a record strictly and saves it into the shared store. A key that no record has is named on
/// standard error and left out. Fails with EX_DATAERR for a record or a mirror key that cannot be saved,
/// EX_CANTCREAT where the store may not be used or made, EX_TEMPFAIL when others keep it locked, else
/// EX_IOERR.
int save(const SaveOptions& options);

/// Prints the last saved report, judged for freshness, for people or as JSON; null in JSON when nothing was
/// saved yet. Fails with EX_UNAVAILABLE when something is stored that cannot be read.
int show(bool asJSON);

/// Prints where the shared store is, what it holds, what is wrong with it and whether a save would succeed,
/// which it tries as far as it changes nothing. EX_UNAVAILABLE unless the tile shows a fresh status and a
/// save would succeed.
int doctor();

}  // namespace status
