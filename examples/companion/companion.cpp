// Saves a report about your Mac: companion STATUS [REASON]
#include <cstdio>

#include "tarno/shared/persistence/mac_defaults.hpp"

int main(int argc, char** argv) {
  const auto status = argc > 1 ? TarnoMacStatus::fromRawValue(argv[1]) : std::nullopt;
  if (!status) {
    std::fputs("Usage: companion locked|unlocked|locking|unknown [REASON]\n", stderr);
    return 64;
  }

  TarnoMacStatusSnapshot report;
  report.deviceName = "Kivo's Mac";
  report.status = status;
  if (argc > 2) report.reason = argv[2];

  try {
    TarnoMacDefaults::saveStatus(report, tarno::now());
  } catch (const tarno::SuiteError& error) {
    // Nothing was saved: the tile keeps the report before this one, until that is stale.
    std::fprintf(stderr, "companion: %s\n", error.what());
    return error.kind() == tarno::SuiteError::Kind::busy ? 75 : 73;
  }
}
