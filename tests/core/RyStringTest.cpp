// Exact-size texts.
#include <RynCommon/RyString.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/CompactUnits.h"

namespace RynCommon {
namespace {

static_assert(sizeof(RyCompactText) == sizeof(void*));

void expectText(const RyCompactText& compact, const UnicodeString& text) {
    EXPECT_EQ(compact.length(), text.length());
    EXPECT_EQ(compact.toString(), text);
    EXPECT_TRUE(compact.equals(text));

    UnicodeString appended(u"before");
    compact.appendTo(appended);
    EXPECT_EQ(appended, UnicodeString(u"before") + text);

    UnicodeString replaced(u"something longer that was there before, and needs a buffer");
    compact.copyTo(replaced);
    EXPECT_EQ(replaced, text);

    if (text.isEmpty()) return;
    UnicodeString other = text;
    EXPECT_FALSE(compact.equals(other + u"x"));
    EXPECT_FALSE(compact.equals(text.tempSubString(0, text.length() - 1)));
    other.setCharAt(text.length() - 1, text[text.length() - 1] ^ 0x100);
    EXPECT_FALSE(compact.equals(other));
}

TEST(RyCompactText, GivesBackEveryText) {
    const std::vector<std::pair<const char*, UnicodeString>> rows = {
        {"empty", u""},
        {"NUL inside", UnicodeString(u"a\0b", 3)},
        {"last narrow unit", u"\u00FF"},
        {"first wide unit", u"\u0100"},
        {"lone surrogates", UnicodeString(u"\xDC00\xD800", 2)},
        {"long and narrow", UnicodeString(5000, u'\u00E9', 5000)},
        {"long and wide", UnicodeString(5000, u'\u6F22', 5000)},
    };
    for (const auto& [what, text] : rows) {
        SCOPED_TRACE(what);
        expectText(RyCompactText(text), text);
        expectText(RyCompactText(text.getBuffer(), text.length()), text);
    }
    UnicodeString growing;
    for (int length = 0; length < 100; ++length) {
        SCOPED_TRACE(length);
        expectText(RyCompactText(growing), growing);
        expectText(RyCompactText(growing + u"\u3000"), growing + u"\u3000");
        growing.append(static_cast<char16_t>(0x60 + length));
    }
}

TEST(RyCompactText, IsTakenOutOfALargerRange) {
    UnicodeString range(u"a\u00E9c\u0100e\u00FFgh\uFFFFij");
    const char16_t* const units = range.getBuffer();
    for (std::int32_t begin = 0; begin <= range.length(); ++begin) {
        for (std::int32_t length = 0; length <= range.length() - begin; ++length) {
            SCOPED_TRACE(std::to_string(begin) + "+" + std::to_string(length));
            for (const std::int32_t limit : {begin + length, range.length()}) {
                const std::u16string_view piece(units + begin, static_cast<std::size_t>(length));
                expectText(CompactUnits::makeText(piece, units + limit),
                           range.tempSubString(begin, length));
            }
        }
    }
}

TEST(RyCompactText, CopiesAndMoves) {
    const UnicodeString narrow(u"narrow");
    const UnicodeString wide(u"wide \u4E00");
    RyCompactText a(narrow);
    RyCompactText b(wide);
    RyCompactText copy(a);
    expectText(copy, narrow);
    copy = b;
    expectText(copy, wide);
    expectText(b, wide);
    copy = *&copy;
    expectText(copy, wide);
    RyCompactText moved(std::move(copy));
    expectText(moved, wide);
    expectText(copy, u"");
    moved = std::move(a);
    expectText(moved, narrow);
    expectText(a, u"");
    moved = RyCompactText();
    expectText(moved, u"");
}

TEST(RyTextBuffer, ShowsOneTextAfterTheOther) {
    RyTextBuffer buffer;
    const auto shown = [&](const auto& text) {
        const std::u16string_view units = buffer.read(text);
        return UnicodeString(units.data(), static_cast<std::int32_t>(units.size()));
    };
    EXPECT_EQ(shown(RyCompactText()), UnicodeString());
    UnicodeString growing;
    for (int length = 0; length < 5000; length = length < 40 ? length + 1 : length * 2 - 13) {
        SCOPED_TRACE(length);
        while (growing.length() < length)
            growing.append(static_cast<char16_t>(0x20 + growing.length() % 0xE0));
        const UnicodeString wide = growing + u"\u3042";
        EXPECT_EQ(shown(RyCompactText(growing)), growing);
        EXPECT_EQ(shown(RyCompactText(wide)), wide);
        EXPECT_EQ(shown(growing), growing);
        EXPECT_EQ(shown(RyCompactText(u"x")), UnicodeString(u"x"));
    }
}

TEST(RyCompactText, NothingToHold) {
    UnicodeString bogus;
    bogus.setToBogus();
    expectText(RyCompactText(bogus), u"");
    expectText(RyCompactText(nullptr, 0), u"");
    expectText(RyCompactText(u"x", -1), u"");
}

}  // namespace
}  // namespace RynCommon
