#include "common/output.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "common/failure.hpp"
#include "common/files.hpp"

namespace program {
namespace {

int outputDescriptor = STDOUT_FILENO;

}  // namespace

void reserveStandardOutput() {
  const int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (own < 0) return;  // standard output is closed; the first write to it will say so
  outputDescriptor = own;
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

void writeOutput(std::string_view bytes) {
  if (!writeAll(outputDescriptor, bytes))
    throw Failure{EX_IOERR, std::string{"cannot write to standard output: "} + std::strerror(errno)};
}

std::string printable(std::string_view text) {
  std::string safe{text};
  for (std::size_t i = 0; i < safe.size(); ++i) {
    const auto byte = static_cast<unsigned char>(safe[i]);
    // C0 and DEL, and C1, which UTF-8 writes as C2 80 to C2 9F.
    const bool isC1 = i > 0 && byte >= 0x80 && byte < 0xA0 && static_cast<unsigned char>(safe[i - 1]) == 0xC2;
    if (isC1) safe.erase(--i, 1);
    if (byte < 0x20 || byte == 0x7F || isC1) safe[i] = '?';
  }
  return safe;
}

}  // namespace program
