// A language with its script and country, read and brought to canonical spelling by ICU.
#include <RynCommon/RyLang.h>
#include <unicode/locid.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "core/NameTable.h"

namespace RynCommon {

namespace {

/// Built-in names of languages, in number order, which is also their order as ASCII texts.
constexpr RyNameEnum LANGUAGE_NAMES[] = {
    RN_afr,     RN_bel,    RN_bul,    RN_ces,    RN_dan,   RN_deu,   RN_ell,   RN_en,     RN_eng,
    RN_est,     RN_fin,    RN_fra,    RN_gle,    RN_hrv,   RN_hun,   RN_isl,   RN_ita,    RN_ja,
    RN_jpn,     RN_ko,     RN_kor,    RN_lav,    RN_lit,   RN_nld,   RN_nor,   RN_pol,    RN_por,
    RN_ron,     RN_rus,    RN_slk,    RN_slv,    RN_spa,   RN_sqi,   RN_srp,   RN_swe,    RN_tur,
    RN_ukr,     RN_zh,     RN_zh_CHN, RN_zh_CN,  RN_zh_HK, RN_zh_SG, RN_zh_TW, RN_zh_TWN, RN_zho,
    RN_zho_CHN, RN_zho_CN, RN_zho_TW, RN_zho_TWN};

/// Language, script and country stand in a tag's first subtags; nothing behind this length matters.
constexpr std::int32_t TAG_LENGTH_MAX = 64;

constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isTagUnit(char16_t unit) {
    return unit < 0x80 && (isLetter(static_cast<char>(unit)) || isDigit(static_cast<char>(unit)) ||
                           unit == u'-' || unit == u'_');
}

/// The subtags' part of the text: a locale name's encoding and keywords begin with other
/// characters.
std::string readTag(const UnicodeString& text) {
    std::string tag;
    const std::int32_t end = std::min(text.length(), TAG_LENGTH_MAX);
    for (std::int32_t i = 0; i < end && isTagUnit(text.charAt(i)); ++i)
        tag.push_back(static_cast<char>(text.charAt(i)));
    return tag;
}

bool isAll(std::string_view subtag, bool (*test)(char)) {
    return std::all_of(subtag.begin(), subtag.end(), test);
}

/// Four letters are reserved (and "none" is among them), a single one introduces other things.
bool isLanguage(std::string_view subtag) {
    return subtag.size() >= 2 && subtag.size() <= 8 && subtag.size() != 4 &&
           isAll(subtag, isLetter) && subtag != "und";
}

bool isScript(std::string_view subtag) {
    return subtag.size() == 4 && isAll(subtag, isLetter);
}

bool isCountry(std::string_view subtag) {
    return (subtag.size() == 2 && isAll(subtag, isLetter)) ||
           (subtag.size() == 3 && isAll(subtag, isDigit));
}

icu::Locale readLocale(const std::string& tag) {
    icu::Locale locale = icu::Locale::createCanonical(tag.c_str());
    // Three letters that are no country's are an extended language subtag, which only tags have.
    if (!locale.isBogus() && std::strlen(locale.getCountry()) == 3 &&
        isLetter(*locale.getCountry())) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale extended = icu::Locale::forLanguageTag(tag, status);
        if (U_SUCCESS(status)) return icu::Locale::createCanonical(extended.getName());
    }
    return locale;
}

template <std::size_t SIZE>
void store(std::array<char, SIZE>& subtag, std::string_view text, bool (*test)(std::string_view)) {
    if (test(text)) text.copy(subtag.data(), SIZE - 1);
}

UnicodeString widen(const char* text) {
    return UnicodeString(text, -1, US_INV);
}

}  // namespace

RyLang::RyLang(const UnicodeString& tag) {
    const std::string subtags = readTag(tag);
    if (subtags.empty()) return;
    const icu::Locale locale = readLocale(subtags);
    if (locale.isBogus()) return;
    store(language_, locale.getLanguage(), isLanguage);
    store(script_, locale.getScript(), isScript);
    store(country_, locale.getCountry(), isCountry);
}

RyLang::RyLang(RyName tag) : RyLang(tag.toString()) {}

UnicodeString RyLang::getLanguage() const {
    return widen(language_.data());
}
UnicodeString RyLang::getScript() const {
    return widen(script_.data());
}
UnicodeString RyLang::getCountry() const {
    return widen(country_.data());
}

UnicodeString RyLang::toString() const {
    if (isEmpty()) return {};
    UnicodeString tag = language_[0] == '\0' ? widen("und") : getLanguage();
    if (script_[0] != '\0') tag.append(u'-').append(getScript());
    if (country_[0] != '\0') tag.append(u'-').append(getCountry());
    return tag;
}

RyName RyLang::getLanguageName() const {
    const UnicodeString code = widen(icu::Locale(language_.data()).getISO3Language());
    const RyName name = findBuiltinName(code.getBuffer(), code.length());
    return getBuiltinNames().hasItem(name) ? name : RyName();
}

RyNameList RyLang::getBuiltinNames() {
    return {LANGUAGE_NAMES, static_cast<int>(std::size(LANGUAGE_NAMES))};
}

}  // namespace RynCommon
