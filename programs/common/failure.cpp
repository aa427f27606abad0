#include "tarno/common/failure.hpp"

#include <errno.h>  // program_invocation_short_name

#include <cstdio>
#include <new>
#include <system_error>

#include "tarno/common/output.hpp"

namespace program {
namespace {

constexpr std::size_t longestLine = 1000;
constexpr std::size_t keptEnd = 300;  ///< of a long line, the bytes at its end, where the reason usually is
constexpr std::string_view ellipsis = " … ";

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string errorLine(std::string_view text) {
  auto line = printable(text);
  if (line.size() <= longestLine) return line;
  auto start = longestLine - keptEnd - ellipsis.size();
  auto end = line.size() - keptEnd;
  while (continuesCharacter(line[start])) --start;
  while (continuesCharacter(line[end])) ++end;
  return line.replace(start, end - start, ellipsis);
}

Failure currentFailure() {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::bad_alloc&) {
    return {EX_OSERR, "out of memory"};
  } catch (const std::system_error& error) {
    return {EX_OSERR, error.what()};
  } catch (const std::exception& error) {
    return {EX_SOFTWARE, error.what()};
  }
}

void complain(const std::string& line) {
  const auto whole = std::string{program_invocation_short_name} + ": " + errorLine(line) + "\n";
  std::fwrite(whole.data(), 1, whole.size(), stderr);
}

}  // namespace program
