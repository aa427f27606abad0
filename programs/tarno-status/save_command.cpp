#include "commands.hpp"
#include "common/failure.hpp"
#include "common/files.hpp"
#include "saving.hpp"

namespace status {

int save(const SaveOptions& options) {
  const auto record = program::readFile(options.file, largestRecord);
  const auto report = decodeRecord(record);
  saveReport(report, options.receivedAt.value_or(foundation::now()), options.mirrorKey);
  if (const auto text = unknownKeysText(record); !text.empty()) program::complain(text);
  return EX_OK;
}

}  // namespace status
