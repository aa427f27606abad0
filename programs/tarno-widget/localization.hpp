#pragma once

#include <string>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace extension {

/// Sets the user's language and finds the message catalogues in ../share/locale beside the program. Call it
/// first in main, before any thread starts.
void useCatalogues();

/// Returns the translation of a key (gettext, domain "tarno"), or the key itself if there is none. The key
/// must not be empty, because gettext keeps the header of a catalogue under the empty key.
std::string localized(const widgetkit::LocalizedStringKey& key);

}  // namespace extension
