// The alphabets of languages.
#include "text/number/LanguageAlphabets.h"

#include <unicode/locid.h>

#include <mutex>
#include <string_view>

#include "core/Immortal.h"
#include "core/MemoryCheck.h"
#include "text/Cleanup.h"
#include "text/number/Alphabets.h"

namespace RynCommon {

namespace {

struct SourceRow {
    const char* languages;
    const char16_t* letters;
};

constexpr SourceRow SOURCE_ROWS[] = {
#define RYN_LANGUAGE_ALPHABET(languages, letters) {languages, letters},
#include "text/number/LanguageAlphabets.inc"
#undef RYN_LANGUAGE_ALPHABET
};

/// Calls `take` with every word of a text that has single blanks between its words.
template <class Take>
void forEachWord(const UnicodeString& text, Take take) {
    for (std::int32_t begin = 0; begin < text.length();) {
        std::int32_t end = text.indexOf(u' ', begin);
        if (end < 0) end = text.length();
        take(text.tempSubStringBetween(begin, end));
        begin = end + 1;
    }
}

/// The one table and its lock.
struct Holder {
    std::mutex mutex;
    std::shared_ptr<const LanguageAlphabets> alphabets;
};

Holder& holder() {
    static Immortal<Holder> instance;
    return instance.get();
}

void releaseAlphabets() {
    const std::lock_guard guard(holder().mutex);
    holder().alphabets.reset();
}

constinit CleanupHook cleanupHook(releaseAlphabets);

}  // namespace

LanguageAlphabet::LanguageAlphabet(const UnicodeString& letters) {
    forEachWord(letters, [this](const UnicodeString& letter) {
        starts_.push_back(static_cast<std::uint32_t>(units_.size()));
        units_.append(letter.getBuffer(), static_cast<std::size_t>(letter.length()));
    });
    starts_.push_back(static_cast<std::uint32_t>(units_.size()));
}

bool LanguageAlphabet::append(UnicodeString& text, int n) const {
    if (n < 1) return false;
    countInLetters(static_cast<std::uint32_t>(n), static_cast<std::uint32_t>(starts_.size() - 1),
                   [&](std::uint32_t index) {
                       text.append(units_.data() + starts_[index],
                                   static_cast<std::int32_t>(starts_[index + 1] - starts_[index]));
                   });
    return true;
}

LanguageAlphabets::LanguageAlphabets() {
    for (const SourceRow& row : SOURCE_ROWS) {
        const UnicodeString letters(row.letters);
        forEachWord(UnicodeString(row.languages, -1, US_INV),
                    [&](const UnicodeString& language) { addLanguage(language, letters); });
    }
}

/// Case rules differ by language: the capital of i is İ in Turkish.
void LanguageAlphabets::addLanguage(const UnicodeString& language, const UnicodeString& letters) {
    std::string code;
    const icu::Locale locale(language.toUTF8String(code).c_str());
    rows_.push_back({language, LanguageAlphabet(letters)});
    rows_.push_back(
        {language, LanguageAlphabet(takeWhole(UnicodeString(letters).toUpper(locale)))});
}

const LanguageAlphabet* LanguageAlphabets::find(const UnicodeString& language,
                                                char32_t first) const {
    for (const Row& row : rows_)
        if (row.alphabet.first() == first && row.language == language) return &row.alphabet;
    return nullptr;
}

std::shared_ptr<const LanguageAlphabets> acquireLanguageAlphabets() {
    const std::lock_guard guard(holder().mutex);
    if (holder().alphabets == nullptr) {
        cleanupHook.enrol();
        holder().alphabets = std::make_shared<const LanguageAlphabets>();
    }
    return holder().alphabets;
}

}  // namespace RynCommon
