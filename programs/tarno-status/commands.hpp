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

/// Decodes a record strictly, saves it into the shared store and reads it back.
int save(const SaveOptions& options);

/// Prints the last saved report, judged for freshness, for people or as JSON.
int show(bool asJSON);

/// Prints where the shared store is, what it holds and what is wrong with it. Changes nothing.
int doctor();

}  // namespace status
