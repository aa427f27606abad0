#include "tarno/tarno-widget/localization.hpp"

#include <libintl.h>

#include <clocale>
#include <filesystem>

namespace extension {
namespace {

constexpr const char* domain = "tarno";

}  // namespace

void useCatalogues() {
  // LC_NUMERIC stays "C", because other programs read the numbers that are printed.
  std::setlocale(LC_CTYPE, "");
  std::setlocale(LC_MESSAGES, "");
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return;
  bindtextdomain(domain, (program.parent_path().parent_path() / "share" / "locale").c_str());
  bind_textdomain_codeset(domain, "UTF-8");
}

std::string localized(const widgetkit::LocalizedStringKey& key) { return dgettext(domain, key.key.c_str()); }

}  // namespace extension
