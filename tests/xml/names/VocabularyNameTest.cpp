// MathMLName and SVGName: both directions, for every name.
#include <gtest/gtest.h>

#include <RynCommon/MathMLName.h>
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/SVGName.h>

namespace RynCommon {
namespace {

struct Row {
    int number;
    const char16_t* text;
};

struct MathML {
    using Name = MathMLName;
    using Enum = MathMLNameEnum;
    static constexpr std::size_t COUNT = 281;
    static constexpr Row ROWS[] = {
#define RYN_VOCABULARY_NAME(number, identifier, text) {number, u"" text},
#include <RynCommon/MathMLNames.inc>
#undef RYN_VOCABULARY_NAME
    };
};
struct SVG {
    using Name = SVGName;
    using Enum = SVGNameEnum;
    static constexpr std::size_t COUNT = 341;
    static constexpr Row ROWS[] = {
#define RYN_VOCABULARY_NAME(number, identifier, text) {number, u"" text},
#include <RynCommon/SVGNames.inc>
#undef RYN_VOCABULARY_NAME
    };
};

template <class Vocabulary>
class VocabularyNameTest : public testing::Test {};
using Vocabularies = testing::Types<MathML, SVG>;
TYPED_TEST_SUITE(VocabularyNameTest, Vocabularies);

TYPED_TEST(VocabularyNameTest, EveryNameBothWays) {
    using Name = typename TypeParam::Name;
    using Enum = typename TypeParam::Enum;
    ASSERT_EQ(std::size(TypeParam::ROWS), TypeParam::COUNT);
    // The second round works on what the first left, the third starts anew.
    for (int round = 0; round < 3; ++round) {
        for (const Row& row : TypeParam::ROWS) {
            const auto number = static_cast<Enum>(row.number);
            const UnicodeString text(row.text);
            EXPECT_EQ(Name::toRyName(number).toString(), text);
            EXPECT_EQ(RyName(Name(number)), RyName(text));
            EXPECT_EQ(Name(RyName(text)), number);
            EXPECT_EQ(Name(RyValue(RyName(text))), number);
            EXPECT_EQ(Name(RyValue(text)), Name(number));
        }
        if (round == 1) Name::cleanup();
    }
}

TYPED_TEST(VocabularyNameTest, OutsideOfTheVocabulary) {
    using Name = typename TypeParam::Name;
    using Enum = typename TypeParam::Enum;
    EXPECT_TRUE(Name().isEmpty());
    EXPECT_TRUE(RyName(Name()).isEmpty());
    for (const char16_t* text : {u"", u"no-such-name", u"zzz", u"A", u"!"})
        EXPECT_TRUE(Name(RyName(UnicodeString(text))).isEmpty());
    for (const int number : {-1, 0, static_cast<int>(TypeParam::COUNT) + 1})
        EXPECT_TRUE(Name::toRyName(static_cast<Enum>(number)).isEmpty()) << number;
    for (const RyValue& value : {RyValue(), RyValue(3), RyValue(u"zzz")})
        EXPECT_TRUE(Name(value).isEmpty());
}

}  // namespace
}  // namespace RynCommon
