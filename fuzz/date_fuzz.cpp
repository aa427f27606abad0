// Reads any text as a date. If it is one, writing and reading it again must give the same date.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tarno/foundation/iso8601.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto date = tarno::dateFromRFC3339({reinterpret_cast<const char*>(data), size});
  if (!date) return 0;
  if (*date < tarno::earliestDate || *date > tarno::latestDate) std::abort();
  const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(*date);
  const tarno::ISO8601DateFormatter formatter{tarno::withInternetDateTime | tarno::withFractionalSeconds};
  if (formatter.date(formatter.string(*date)) != milliseconds) std::abort();
  return 0;
}
