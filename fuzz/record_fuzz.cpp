// Decodes any bytes as a record. If they are one, encoding and decoding it again must give the same record.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TarnoMacStatusSnapshot snapshot;
  try {
    snapshot =
        TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>({reinterpret_cast<const char*>(data), size});
  } catch (const tarno::DecodingError&) {
    return 0;
  }
  if (snapshot.seenAt) snapshot.seenAt = std::chrono::floor<std::chrono::seconds>(*snapshot.seenAt);
  const auto again =
      TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(TarnoJSON::encoder().encode(snapshot));
  if (!(again == snapshot)) std::abort();
  return 0;
}
