// Reads any answer of a frame process, with any memory. All pixels of a picture that is accepted must be
// readable.

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>

#include "tarno/tarno-desktop/frame.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  auto memory = desktop::makePictureMemory();
  if (ftruncate(memory.get(), 1024 * data[0]) != 0) std::abort();
  if (data[1] % 4 != 0) fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK);
  constexpr double scale = 1.5;
  try {
    const auto frame =
        desktop::readFrame({reinterpret_cast<const char*>(data + 2), size - 2}, std::move(memory), scale);
    std::uint32_t sum = 0;
    for (int y = 0; y < frame.picture->height; ++y)
      for (const auto pixel : frame.picture->row(y)) sum += pixel;
    if (sum != 0 || frame.title.size() > 4000) std::abort();
    for (const auto& element : frame.elements)
      if (element.role.size() > 4000 || !(element.x + element.width < 1e5)) std::abort();
  } catch (const std::exception&) {
  }
  return 0;
}
