// A language with its script and country.
#pragma once

#include <array>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// A language as tags name it: language, script and country, in ICU's canonical spelling. A small
/// value of plain subtags; variants and extensions of a tag are left out. The default is no
/// language at all.
class RYNCOMMON_API RyLang {
public:
    RyLang() = default;
    /// Reads a language tag (BCP 47, "zh-Hant-TW") or a locale name ("zh_TW.UTF-8"), in any letter
    /// case. Three-letter codes of languages (ISO 639-2) and countries (ISO 3166) count as the
    /// short ones where these exist, retired codes as their successors: "zho-TWN" is "zh-TW", "iw"
    /// is "he". What is no language ("none", "und") gives none.
    explicit RyLang(const UnicodeString& tag);
    /// The same of the name's text; every name of getBuiltinNames is understood.
    explicit RyLang(RyName tag);
    explicit RyLang(RyNameEnum tag) : RyLang(RyName(tag)) {}

    /// Two or three letters in lower case ("ja"; up to eight for registered languages); empty
    /// without a language.
    UnicodeString getLanguage() const;
    /// Four letters ("Hant"); empty when the tag names no script.
    UnicodeString getScript() const;
    /// Two capitals or three digits ("TW", "419"); empty when the tag names no country.
    UnicodeString getCountry() const;
    /// Whether all three are empty.
    bool isEmpty() const { return *this == RyLang(); }

    /// The tag, "-" between its parts ("und" for the language when there is a script or a country
    /// only); empty for no language.
    UnicodeString toString() const;
    /// The built-in name of the language alone, its three-letter code ("jpn"); empty for languages
    /// without one.
    RyName getLanguageName() const;
    /// All built-in names that name a language, or a language with its country, in the order of
    /// their numbers.
    static RyNameList getBuiltinNames();

    friend bool operator==(const RyLang& a, const RyLang& b) {
        return a.language_ == b.language_ && a.script_ == b.script_ && a.country_ == b.country_;
    }
    friend bool operator!=(const RyLang& a, const RyLang& b) { return !(a == b); }

private:
    // ASCII, filled up with NULs, the last of which always stands.
    std::array<char, 9> language_{};
    std::array<char, 5> script_{};
    std::array<char, 4> country_{};
};

}  // namespace RynCommon
