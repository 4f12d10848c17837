// Languages from tags, locale names and built-in names.
#include <gtest/gtest.h>
#include <unicode/locid.h>
#include "tests/text/NumberTestSupport.h"

namespace RynCommon {
namespace {

TEST(RyLang, TagsAreReadInCanonicalSpelling) {
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"", ""},
        {u"JA", "ja"},
        {u"jpn", "ja"},
        {u"ZHO-hant-twn", "zh-Hant-TW"},
        {u"zh-yue", "yue"},
        {u"zh-cmn-Hans-CN", "zh-Hans-CN"},
        {u"en_US.UTF-8", "en-US"},
        {u"sr@latin", "sr"},
        {u"iw", "he"},
        {u"sh", "sr-Latn"},
        {u"de-DE-1901-u-co-phonebk", "de-DE"},
        {u"i-klingon", "tlh"},
        {u"und", ""},
        {u"none", ""},
        {u"abcdefghijk", ""},
        {u"ja\u00E9", "ja"},
        {u" ja", ""},
    };
    for (const auto& [text, tag] : rows) {
        const RyLang lang(text);
        EXPECT_EQ(s(lang.toString()), tag) << s(text);
        EXPECT_EQ(lang.isEmpty(), lang.toString().isEmpty()) << s(text);
        EXPECT_EQ(RyLang(lang.toString()), lang) << s(text);
    }
    const RyLang lang(u"zho-hant-TWN");
    EXPECT_EQ(lang.getLanguage(), u"zh");
    EXPECT_EQ(lang.getScript(), u"Hant");
    EXPECT_EQ(lang.getCountry(), u"TW");
    EXPECT_NE(lang, RyLang(u"zh-Hant"));
    EXPECT_NE(lang, RyLang(u"yue-Hant-TW"));
    EXPECT_EQ(RyLang(UnicodeString(1 << 20, u'a', 1 << 20)), RyLang());
}

TEST(RyLang, EveryBuiltinNameIsUnderstood) {
    const RyNameList names = RyLang::getBuiltinNames();
    EXPECT_EQ(names.getCount(), 49);
    for (int i = 0; i < names.getCount(); ++i) {
        const RyName name = names.getItem(i);
        const RyLang lang(name);
        const std::string text = s(name.toString());
        EXPECT_FALSE(lang.getLanguage().isEmpty()) << text;
        EXPECT_EQ(lang, RyLang(name.toString())) << text;
        EXPECT_EQ(lang.getCountry().isEmpty(), text.find('-') == std::string::npos) << text;
        EXPECT_FALSE(lang.getLanguageName().isEmpty()) << text;
        EXPECT_EQ(lang.getLanguageName().toString().length(), 3) << text;
        if (i > 0) {
            EXPECT_LT(names.getItem(i - 1), name) << text;
        }
    }
    EXPECT_EQ(RyLang(RN_zho_TWN), RyLang(RN_zh_TW));
    EXPECT_EQ(RyLang(RN_ja).getLanguageName(), RN_jpn);
    EXPECT_EQ(RyLang(u"zh-Hant").getLanguageName(), RN_zho);
    EXPECT_EQ(RyLang(u"abs").getLanguageName(), RN_EMPTY);  // a name, but not as a language
    EXPECT_EQ(RyLang(u"tlh").getLanguageName(), RN_EMPTY);
    EXPECT_EQ(RyLang().getLanguageName(), RN_EMPTY);
    EXPECT_TRUE(RyLang(RN_none).isEmpty());
    EXPECT_TRUE(RyLang(RN_EMPTY).isEmpty());
}

}  // namespace
}  // namespace RynCommon
