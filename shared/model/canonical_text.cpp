#include "shared/model/canonical_text.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace {

/// Below U+0300, the first combining mark, no two different texts are equivalent. Its first byte is 0xCC.
bool mayHaveOtherForms(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xCC; });
}

std::optional<std::string> decomposed(std::string_view text) {
  utf8proc_uint8_t* buffer = nullptr;
  const auto length = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                   static_cast<utf8proc_ssize_t>(text.size()), &buffer,
                                   static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_DECOMPOSE));
  if (length < 0) return std::nullopt;
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner{buffer, &std::free};
  return std::string{reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length)};
}

}  // namespace

bool canonicallyEquivalent(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (!mayHaveOtherForms(a) && !mayHaveOtherForms(b)) return false;
  const auto first = decomposed(a);
  return first && first == decomposed(b);
}
