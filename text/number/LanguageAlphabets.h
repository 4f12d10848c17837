// The alphabets of languages.
//
// They are held as one table, made of LanguageAlphabets.inc when a language's letters are first
// asked for, and dropped by RyUtil::cleanup. Who reads it holds a share of it, so that a cleanup in
// between does no harm: the next one to ask builds a new table.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// One alphabet; some of its letters are written with several units ("ch").
class LanguageAlphabet {
public:
    /// `letters` stand with a blank between each other.
    explicit LanguageAlphabet(const UnicodeString& letters);

    char16_t first() const { return units_[0]; }
    /// False, and nothing appended, below 1.
    bool append(UnicodeString& text, int n) const;

private:
    std::u16string units_;
    std::vector<std::uint32_t> starts_;  // one for each letter, and the end
};

/// All alphabets of all languages.
class LanguageAlphabets {
public:
    LanguageAlphabets();

    /// The language's alphabet for a token that begins with the character; null when it has none of
    /// its own. `language` is the two- or three-letter code.
    const LanguageAlphabet* find(const UnicodeString& language, char32_t first) const;

private:
    struct Row {
        UnicodeString language;
        LanguageAlphabet alphabet;
    };
    void addLanguage(const UnicodeString& language, const UnicodeString& letters);

    std::vector<Row> rows_;
};

/// The table; builds it when there is none. Takes a lock that nothing else is locked under.
std::shared_ptr<const LanguageAlphabets> acquireLanguageAlphabets();

}  // namespace RynCommon
