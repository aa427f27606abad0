#pragma once

#include <string_view>

namespace TarnoText {

/// Returns whether two UTF-8 texts are canonically equivalent (Unicode Standard Annex #15): a letter with its
/// accent equals the same letter followed by a combining accent. Texts that are not UTF-8 are equal only byte
/// for byte.
bool canonicallyEquivalent(std::string_view a, std::string_view b);

}  // namespace TarnoText
