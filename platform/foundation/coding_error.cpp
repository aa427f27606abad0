#include "tarno/foundation/coding_error.hpp"

#include <algorithm>
#include <utility>

namespace tarno {
namespace {

/// Returns the text of what(). Replaces NULs, which a key may contain, because what() would end there.
std::string message(const CodingPath& path, const std::string& text) {
  auto line = path.empty() ? text : description(path) + ": " + text;
  std::replace(line.begin(), line.end(), '\0', '?');
  return line;
}

}  // namespace

std::string description(const CodingPath& path) {
  std::string joined;
  for (const auto& key : path) {
    if (!joined.empty()) joined += '.';
    joined += key;
  }
  return joined;
}

DecodingError::DecodingError(Kind kind_, CodingPath codingPath_, std::string debugDescription_)
    : runtime_error(message(codingPath_, debugDescription_)),
      kind(kind_),
      codingPath(std::move(codingPath_)),
      debugDescription(std::move(debugDescription_)) {}

EncodingError::EncodingError(CodingPath codingPath_, std::string debugDescription_)
    : runtime_error(message(codingPath_, debugDescription_)),
      codingPath(std::move(codingPath_)),
      debugDescription(std::move(debugDescription_)) {}

}  // namespace tarno
