#include "tarno/common/output.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include "tarno/common/failure.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {
namespace {

int output = STDOUT_FILENO;

/// Returns the first character of `text` and its length in bytes. If that is not UTF-8 (RFC 3629, section 4),
/// returns no character and the length 1.
std::pair<std::optional<char32_t>, std::size_t> firstCharacter(std::string_view text) {
  constexpr std::pair<std::nullopt_t, std::size_t> invalid{std::nullopt, 1};
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {first, 1};
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC0 || first > 0xF4 || text.size() < length) return invalid;
  char32_t character = first & (0x7Fu >> length);
  for (const char c : text.substr(1, length - 1)) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80 || byte > 0xBF) return invalid;
    character = character << 6 | (byte & 0x3Fu);
  }
  constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};  // indexed by the length
  const bool isSurrogate = 0xD800 <= character && character <= 0xDFFF;
  if (character < smallest[length] || character > 0x10FFFF || isSurrogate) return invalid;
  return {character, length};
}

bool steersTerminal(char32_t character) {
  const auto isIn = [character](char32_t first, char32_t last) {
    return first <= character && character <= last;
  };
  return isIn(0, 0x1F) || isIn(0x7F, 0x9F) || isIn(0x2028, 0x202E) || isIn(0x2066, 0x2069);
}

}  // namespace

void reserveStandardOutput() {
  const int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (own < 0) return;  // standard output is closed; the first write reports that
  output = own;
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

void writeOutput(std::string_view bytes) {
  if (!tarno::writeAll(output, bytes))
    throw Failure{EX_IOERR, std::string{"cannot write to standard output: "} + std::strerror(errno)};
}

int outputDescriptor() { return output; }

std::string printable(std::string_view text) {
  std::string safe;
  safe.reserve(text.size());
  while (!text.empty()) {
    const auto [character, length] = firstCharacter(text);
    if (character && !steersTerminal(*character)) {
      safe += text.substr(0, length);
    } else {
      safe += '?';
    }
    text.remove_prefix(length);
  }
  return safe;
}

std::string printableLines(std::string_view text) {
  std::string safe;
  while (true) {
    const auto end = text.find('\n');
    safe += printable(text.substr(0, end));
    if (end == text.npos) return safe;
    safe += '\n';
    text.remove_prefix(end + 1);
  }
}

}  // namespace program
