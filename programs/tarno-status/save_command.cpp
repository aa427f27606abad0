#include "tarno/common/failure.hpp"
#include "tarno/common/files.hpp"
#include "tarno/tarno-status/commands.hpp"
#include "tarno/tarno-status/saving.hpp"

namespace status {

int save(const SaveOptions& options) {
  const auto record = program::readFile(options.file, largestRecord);
  const auto report = decodeRecord(record);
  saveReport(report, options.receivedAt.value_or(tarno::now()), options.mirrorKey);
  if (const auto text = unknownKeysText(record); !text.empty()) program::complain(text);
  return EX_OK;
}

}  // namespace status
