#pragma once

#include <string>

#include "tarno/widgetkit/widget_configuration.hpp"

namespace extension {

/// Takes up the user's language and finds the message catalogues beside the program, in ../share/locale. Call
/// first thing in main, before any thread starts.
void useCatalogues();

/// The text for a key in the user's language by gettext, domain "tarno", or the key itself where there is
/// none. The key is not empty: under the empty key gettext keeps a catalogue's header.
std::string localized(const widgetkit::LocalizedStringKey& key);

}  // namespace extension
