#include "tarno/render/font_contexts.hpp"

#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <cstdlib>

#include "tarno/render/font_face.hpp"

namespace render {
namespace {

using Config = tarno::Handle<FcConfig, FcConfigDestroy>;
using Pattern = tarno::Handle<FcPattern, FcPatternDestroy>;
using FontMap = ObjectHandle<PangoFontMap>;
using FontOptions = tarno::Handle<cairo_font_options_t, cairo_font_options_destroy>;

bool isRounded(const Pattern& pattern) {
  FcChar8* family = nullptr;
  return pattern && FcPatternGetString(pattern.get(), FC_FAMILY, 0, &family) == FcResultMatch &&
         FcStrCmpIgnoreCase(family, reinterpret_cast<const FcChar8*>(roundedFamily)) == 0;
}

/// Returns whether `config` has Quicksand and does not replace it with another font.
bool servesRounded(FcConfig* config) {
  const Pattern wanted(FcPatternBuild(nullptr, FC_FAMILY, FcTypeString, roundedFamily, nullptr));
  if (!wanted || !FcConfigSubstitute(config, wanted.get(), FcMatchPattern)) return false;
  FcDefaultSubstitute(wanted.get());
  FcResult result{};
  return isRounded(wanted) && isRounded(Pattern(FcFontMatch(config, wanted.get(), &result)));
}

/// Returns a configuration with only the font files of Debian's fonts-quicksand, or null if they are missing.
/// Includes the settings of the administrator and the user, so that they apply to all texts.
Config roundedFaceOnly() {
  static constexpr char text[] =
      "<fontconfig>"
      "<dir>/usr/share/fonts/truetype/quicksand</dir>"
      "<cachedir>/var/cache/fontconfig</cachedir>"
      "<cachedir prefix=\"xdg\">fontconfig</cachedir>"
      "<include ignore_missing=\"yes\" prefix=\"xdg\">fontconfig/conf.d</include>"
      "<include ignore_missing=\"yes\" prefix=\"xdg\">fontconfig/fonts.conf</include>"
      "<include ignore_missing=\"yes\" deprecated=\"yes\">~/.fonts.conf.d</include>"
      "<include ignore_missing=\"yes\" deprecated=\"yes\">~/.fonts.conf</include>"
      "<include ignore_missing=\"yes\">/etc/fonts/local.conf</include>"
      "</fontconfig>";
  Config config(FcConfigCreate());
  const bool built =
      config &&
      FcConfigParseAndLoadFromMemory(config.get(), reinterpret_cast<const FcChar8*>(text), FcFalse) &&
      FcConfigBuildFonts(config.get());
  return built && servesRounded(config.get()) ? std::move(config) : nullptr;
}

FontMap makeFontMap() { return FontMap(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT)); }

FontMap makeFontMap(FcConfig* config) {
  // When Pango creates the first font map of a process, it makes fontconfig load all fonts of the machine and
  // waits for that, unless there is a current configuration.
  const bool firstInProcess = !g_type_class_peek(PANGO_TYPE_FC_FONT_MAP);
  if (firstInProcess) FcConfigSetCurrent(config);
  FontMap map = makeFontMap();
  pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map.get()), config);
  if (firstInProcess) {
    pango_fc_font_map_get_config(
        PANGO_FC_FONT_MAP(map.get()));  // waits until Pango has read the configuration
    FcConfigSetCurrent(nullptr);
  }
  return map;
}

PangoLanguage* languageOfLocale() {
  PangoLanguage* language = pango_language_get_default();
  return pango_language_matches(language, "c;posix") ? pango_language_from_string("en") : language;
}

ObjectHandle<PangoContext> makeContext(const FontMap& fontMap) {
  ObjectHandle<PangoContext> context(pango_font_map_create_context(fontMap.get()));
  // With hinting, widths would depend on the scale: a text that fits at one scale could be cut at another.
  const FontOptions options(cairo_font_options_create());
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(context.get(), options.get());
  pango_context_set_round_glyph_positions(context.get(), FALSE);
  // Without a language, Pango would look up every font twice: without a language, and for the language that
  // it assumes for Latin text.
  pango_context_set_language(context.get(), languageOfLocale());
  return context;
}

}  // namespace

FontContexts::FontContexts() {
  if (std::getenv("FONTCONFIG_FILE") || std::getenv("FONTCONFIG_PATH")) return;
  if (const Config config = roundedFaceOnly()) rounded_ = makeContext(makeFontMap(config.get()));
}

PangoContext* FontContexts::all() {
  if (!all_) all_ = makeContext(makeFontMap());
  return all_.get();
}

bool FontContexts::hasRounded() {
  if (!hasRounded_)
    hasRounded_ = rounded_ || pango_font_map_get_family(pango_context_get_font_map(all()), roundedFamily);
  return *hasRounded_;
}

}  // namespace render
