#include "tarno/shared/model/canonical_text.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace TarnoText {
namespace {

using CodePoints = std::vector<utf8proc_int32_t>;

/// Returns false if `text` is canonically equivalent only to itself: it has no character from U+0300 on, the
/// first combining mark, whose first byte in UTF-8 is 0xCC.
bool mayHaveOtherForms(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xCC; });
}

int combiningClass(utf8proc_int32_t codePoint) { return utf8proc_get_property(codePoint)->combining_class; }

/// Applies the canonical ordering of Unicode Standard Annex #15: sorts each run of combining marks by class
/// and keeps the order within a class. The library's own function takes quadratic time in the length of a
/// run.
void sortCombiningMarks(CodePoints& text) {
  const auto isMark = [](auto codePoint) { return combiningClass(codePoint) != 0; };
  for (auto first = text.begin(); (first = std::find_if(first, text.end(), isMark)) != text.end();) {
    const auto last = std::find_if_not(first, text.end(), isMark);
    if (last - first > 1)
      std::stable_sort(first, last, [](auto a, auto b) { return combiningClass(a) < combiningClass(b); });
    first = last;
  }
}

/// Returns the canonical decomposition (NFD) of UTF-8; nothing if the text is not UTF-8.
std::optional<CodePoints> decomposed(std::string_view text) {
  CodePoints result;
  result.reserve(text.size());
  while (!text.empty()) {
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    if (length < 0) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(length));

    std::array<utf8proc_int32_t, 4> parts;  // no code point has a longer canonical decomposition
    const auto count =
        utf8proc_decompose_char(codePoint, parts.data(), parts.size(), UTF8PROC_DECOMPOSE, nullptr);
    result.insert(result.end(), parts.begin(), parts.begin() + count);
  }
  sortCombiningMarks(result);
  return result;
}

}  // namespace

bool canonicallyEquivalent(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (!mayHaveOtherForms(a) && !mayHaveOtherForms(b)) return false;
  const auto first = decomposed(a);
  return first && first == decomposed(b);
}

}  // namespace TarnoText
