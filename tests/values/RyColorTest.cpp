// Colours: construction, conversion, keywords, equality, text form, and colours inside of values.
#include <cmath>
#include <fstream>

#include <RynCommon/RyColor.h>
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

std::string textOf(const RyColor& color, bool named = false) {
    return s(color.toString(named));
}

TEST(RyColor, Construction) {
    const float nan = std::nanf("");
    const struct {
        const char* what;
        RyColor color;
        unsigned rgb;
        const char* text;
    } rows[] = {
        {"default", RyColor(), 0, "#000000"},
        {"packed", RyColor(0xABCDEF), 0xABCDEF, "#ABCDEF"},
        {"too wide", RyColor(0x12345678u), 0x345678, "#345678"},
        {"negative", RyColor(-1), 0xFFFFFFFF, "transparent"},
        {"gray", RyColor(0.5F), 0x808080, "rgb-icc(128,128,128,#GRAYSCALE,0.5)"},
        {"gray over", RyColor(RyColor(0x123456), 0.25F), 0x123456,
         "rgb-icc(18,52,86,#GRAYSCALE,0.25)"},
        {"cmyk", RyColor(1, 0, 0.5F, 0.5F), 0x008040, "rgb-icc(0,128,64,#CMYK,1,0,0.5,0.5)"},
        {"cmyk clamped", RyColor(2, -1, nan, 0), 0x00FFFF, "rgb-icc(0,255,255,#CMYK,1,0,0,0)"},
        {"cmyk over", RyColor(RyColor(0xFF0000), 0, 0.25F, 0, 1e-9F), 0xFF0000,
         "rgb-icc(255,0,0,#CMYK,0,0.25,0,1e-09)"},
        {"separation", RyColor(u"Spot", 0.25F), 0xBFBFBF, "rgb-icc(191,191,191,Spot,0.25)"},
        {"separation over", RyColor(RyColor(0xFF0000), u"A b", 0.25F), 0xFF0000,
         "rgb-icc(255,0,0,\"A b\",0.25)"},
        {"alternate", RyColor(u"S", 0.5F, 0, 1, 0, 0), 0xFF00FF,
         "rgb-icc(255,0,255,S,0.5,0,1,0,0)"},
        {"alternate over its own", RyColor(RyColor(0xFF0000), u"S", 1, 0, 1, 1, 0), 0xFF0000,
         "rgb-icc(255,0,0,#SEPARATION,S,1,0,1,1,0)"},
        {"alternate over", RyColor(RyColor(1), u"S", 0.5F, 0, 1, 0, 9), 1,
         "rgb-icc(0,0,1,S,0.5,0,1,0,1)"},
        {"no name", RyColor(u"", 1), 0, "rgb-icc(0,0,0,All,1)"},
        {"icc", RyColor(RyColor(0x102030), u"sRGB v4", 0, 0.5F, -1, 2), 0x102030,
         "rgb-icc(16,32,48,\"sRGB v4\",0,0.5,0,1)"},
        {"transparent", RyColor::getTransparent(), 0xFFFFFFFF, "transparent"},
        {"current", RyColor::getCurrentColor(), 0xFE000000, "currentColor"},
        {"invalid base", RyColor(RyColor::getInvalidColor(), 1.0F), 0,
         "rgb-icc(0,0,0,#GRAYSCALE,1)"},
        {"transparent base", RyColor(RyColor::getTransparent(), 0, 0, 0, 1), 0xFFFFFFFF,
         "transparent icc-color(#CMYK,0,0,0,1)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.color.getRGB(), row.rgb) << row.what;
        EXPECT_EQ(textOf(row.color), row.text) << row.what;
    }
}

TEST(RyColor, NamedText) {
    const struct {
        RyColor color;
        const char* text;
    } rows[] = {
        {RyColor(0xFF0000), "red"},
        {RyColor(1, 0, 0, 0), "#00FFFF icc-color(#CMYK,1,0,0,0)"},
        {RyColor(0.1F), "#1A1A1A icc-color(#GRAYSCALE,0.1)"},
        {RyColor(u"Spot", 0.5F), "#808080 icc-color(Spot,0.5)"},
        {RyColor(RyColor(0xFF0000), u"it's", 1), "#FF0000 icc-color(\"it's\",1)"},
        {RyColor(RyColor(0x808080), u"Spot", 0.5F), "#808080 icc-color(#SEPARATION,Spot,0.5)"},
        {RyColor(RyColor(0), u"p", 0, 0, 0, 1.0F / 3), "#000000 icc-color(p,0,0,0,0.333333)"},
        {RyColor(RyColor::getCurrentColor(), 0.5F), "currentColor icc-color(#GRAYSCALE,0.5)"},
    };
    for (const auto& row : rows) EXPECT_EQ(textOf(row.color, true), row.text);
}

TEST(RyColor, Accessors) {
    const RyColor separation(RyColor(0x102030), u"Spot", 0.5F, 0.1F, 0.2F, 0.3F, 0.4F);
    EXPECT_EQ(separation.getSeparationTint(), 0.5F);
    EXPECT_EQ(separation.getSeparationK(), 0.4F);
    EXPECT_TRUE(separation.getICCColorProfileName().isEmpty());
    EXPECT_EQ(separation.getProfileType(), RN_hash_SEPARATION);
    EXPECT_NE(separation.getICCValue(5), 0) << "the slot of the flags";
    EXPECT_EQ(separation.getICCValue(6), 0);
    EXPECT_EQ(separation.getICCValue(-1), 0);
    const RyColor icc(separation, u"profile", 0.1F, 0.2F, 0.3F, 0.4F);
    EXPECT_EQ(s(icc.getICCColorProfileName().toString()), "profile");
    EXPECT_EQ(s(icc.getSeparationColorName()), "");
    EXPECT_EQ(icc.getICCValue(3), 0.4F);
    EXPECT_EQ(icc.getICCValue(4), 0);
    EXPECT_EQ(icc.getBGR(), 0x302010u);
    EXPECT_EQ(RyColor::fromBGR(0x302010), RyColor(0x102030));
}

TEST(RyColor, Flags) {
    const RyColor base(0x102030);
    const struct {
        RyColor color;
        const char* flags;  // sRGB of CMYK, of gray; sRGB, tint, alternate of a separation
    } rows[] = {
        {base, "00000"},
        {RyColor(0, 0, 0, 1.0F), "10000"},
        {RyColor(0.5F), "01000"},
        {RyColor(u"S", 1), "00010"},
        {RyColor(base, u"S", 1), "00110"},
        {RyColor(u"S", 1, 0, 0, 0, 1), "00011"},
        {RyColor(base, u"S", 1, 0, 0, 0, 1), "00111"},
        {RyColor(base, u"S", 1, 1, 1, 1), "00000"},
    };
    for (const auto& row : rows) {
        const RyColor& c = row.color;
        std::string flags;
        for (const bool flag : {c.hasCMYKRGB(), c.hasGrayscaleRGB(), c.hasSeparationRGB(),
                                c.hasSeparationTint(), c.hasSeparationCMYK()})
            flags += flag ? '1' : '0';
        EXPECT_EQ(flags, row.flags) << textOf(c);
    }
    RyColor color(u"S", 1);
    color.adjustSeparationFlags(true, false, true);
    EXPECT_TRUE(color.hasSeparationRGB() && !color.hasSeparationTint() &&
                color.hasSeparationCMYK());
    RyColor plain(base);
    plain.adjustSeparationFlags(true, true, true);
    EXPECT_EQ(plain, base);
}

TEST(RyColor, Conversions) {
    EXPECT_EQ(RyColor::cmyk2rgb(0, 0, 0, 1), 0u);
    EXPECT_EQ(RyColor::cmyk2rgb(1, 0, 0, 0), 0x00FFFFu);
    EXPECT_EQ(RyColor::cmyk2rgb(5, std::nanf(""), -1, 0.5F), 0x008080u);
    const RyColor red = RyColor::rgb2cmyk(0xFF0000);
    EXPECT_EQ(red, RyColor(0, 1, 1, 0.0F));
    EXPECT_EQ(red.getC() + red.getK(), 0);
    // The inks are not scaled by what black leaves, so that mixed colours come back lighter.
    const RyColor brown = RyColor::rgb2cmyk(0x804020);
    EXPECT_EQ(brown, RyColor(0, 64 / 255.0F, 96 / 255.0F, 127 / 255.0F));
    EXPECT_EQ(brown.getRGB(), 0x806050u);
    EXPECT_EQ(RyColor(0xFFFFFF).getDark(), RyColor(0xAAAAAA));
    EXPECT_EQ(RyColor(0).getLight(), RyColor(0x808080));
    EXPECT_EQ(RyColor(0, 0, 1, 0.0F).getDark(), RyColor(0xAAAA00));
    EXPECT_EQ(RyColor(0x0102FF).getLight(), RyColor(0x8081FF));
    EXPECT_EQ(RyColor(u"S", 0.5F).getSeparationRGB(), 0x808080u);
    EXPECT_EQ(RyColor(u"S", 0.5F, 1, 0, 0, 0).getSeparationRGB(), 0x80FFFFu);
    EXPECT_EQ(RyColor(u"S", 0.5F, 1, 0, 0, 0).getRGB(), 0x00FFFFu);
}

/// The keywords and values of the data file that the table is made from.
std::vector<std::pair<std::string, unsigned>> readKeywords() {
    std::ifstream in(RYN_SOURCE_DIR "/values/data/svg-colors.tsv");
    std::vector<std::pair<std::string, unsigned>> keywords;
    std::string name;
    std::string rgb;
    while (in >> name >> rgb)
        keywords.emplace_back(name, static_cast<unsigned>(std::stoul(rgb, nullptr, 16)));
    return keywords;
}

TEST(RyColor, KeywordsBothWays) {
    const auto keywords = readKeywords();
    ASSERT_EQ(keywords.size(), 147u);
    for (const auto& [name, rgb] : keywords) {
        const RyName keyword(UnicodeString::fromUTF8(name));
        EXPECT_EQ(RyColor(keyword).getRGB(), rgb) << name;
        RyName lowest = keyword;
        for (const auto& [other, otherRgb] : keywords) {
            const RyName candidate(UnicodeString::fromUTF8(other));
            if (otherRgb == rgb && RyNameEnum(candidate) < RyNameEnum(lowest)) lowest = candidate;
        }
        EXPECT_EQ(RyColor(rgb).getColorName(), lowest) << name;
    }
    EXPECT_EQ(RyColor(0x00FFFF).getColorName(), RN_aqua);
    EXPECT_EQ(RyColor::getTransparent().getColorName(), RN_transparent);
    EXPECT_EQ(RyColor::getCurrentColor().getColorName(), RN_currentColor);
    EXPECT_TRUE(RyColor::getInvalidColor().getColorName().isEmpty());
    EXPECT_TRUE(RyColor(0x010203).getColorName().isEmpty());
}

TEST(RyColor, KeywordsInAnyCase) {
    const std::pair<const char16_t*, RyColor> rows[] = {
        {u"DarkSlateGREY", RyColor(0x2F4F4F)},         {u"TRANSPARENT", RyColor::getTransparent()},
        {u"currentColor", RyColor::getCurrentColor()}, {u"blac\u212A", RyColor(0)},
        {u"L\u0130ME", RyColor::getInvalidColor()},    {u"", RyColor::getInvalidColor()},
        {u"solid", RyColor::getInvalidColor()},
    };
    for (const auto& [name, color] : rows) EXPECT_EQ(RyColor(RyName(name)), color) << s(name);
}

TEST(RyColor, Equality) {
    const RyColor base(0x808080);
    RyColor given(u"S", 0.5F);
    given.adjustSeparationFlags(true, true, false);
    const struct {
        RyColor a, b;
        bool isEqual;
    } rows[] = {
        {base, RyColor(0x808080), true},
        {base, RyColor(0.5F), false},
        {RyColor(0.5F), RyColor(base, 0.5F), true},
        {RyColor(base, 0, 0, 0, 0.5F), RyColor(base, 0, 0, 0.1F, 0.5F), false},
        {RyColor(u"S", 0.5F), RyColor(u"T", 0.5F), false},
        {RyColor(u"All", 0.5F), RyColor(u"aLL", 0.5F), true},
        {RyColor(u"S", 0.5F), given, false},
        {given, RyColor(base, u"S", 0.5F), true},
        {RyColor(base, u"p", 0, 0, 0, 0), RyColor(base, u"q", 0, 0, 0, 0), false},
        {RyColor(base, u"p", 0, 0, 0, 0), RyColor(base, u"p", 0, 0, 0, 1), false},
        {RyColor(base, 0.1234567F), RyColor(base, 0.1234569F), true},
        {RyColor(base, 0.123456F), RyColor(base, 0.123457F), false},
    };
    for (const auto& row : rows) {
        const std::string pair = textOf(row.a) + " " + textOf(row.b);
        EXPECT_EQ(row.a == row.b, row.isEqual) << pair;
        EXPECT_EQ(row.a != row.b, !row.isEqual) << pair;
        EXPECT_EQ(RyValue(row.a) == RyValue(row.b), row.isEqual) << pair;
    }
    EXPECT_TRUE(RyColor(u"ALL", 1).isRegistration());
    EXPECT_FALSE(RyColor(u"Spot", 1).isRegistration());
    EXPECT_FALSE(RyColor(base, u"All", 1, 1, 1, 1).isRegistration())
        << "an ICC profile of that name";
}

TEST(RyColor, InsideOfValues) {
    const int last = RyNameTable::getSharedNameTable()->getNameLast();
    EXPECT_EQ(describe(RyValue(RyColor(0xFF0000))), "1/24 #FF0000");
    const RyValue cmyk{RyColor(1, 0, 0, 0)};
    EXPECT_EQ(describe(cmyk), "7/24 rgb-icc(0,255,255,#CMYK,1,0,0,0)");
    EXPECT_TRUE(cmyk.isColor());
    EXPECT_EQ(cmyk.getNamedItem(RN_cyan), RyValue(1.0F));
    EXPECT_EQ(cmyk.getNamedItem(RN_color_profile), RyValue(RN_hash_CMYK));
    EXPECT_EQ(RyValue(RyColor(u"S", 1)).getNamedItem(RN_name), RyValue(u"S", RYUNIT_LITERAL));
    EXPECT_EQ(RyNameTable::getSharedNameTable()->getNameLast(), last) << "something was interned";
    EXPECT_EQ(RyColor(RyValue(RN_red)), RyColor(0xFF0000));
    RyValue stray;
    stray.makeCompound();
    stray.setUnitType(RYUNIT_COLOR);
    const RyValue others[] = {RyValue(), 5, u"red", RN_solid, stray, RyValue(1, RYUNIT_COLOR)};
    for (const RyValue& other : others) EXPECT_TRUE(other.getColorValue().isInvalid());
    EXPECT_EQ(s(stray.toString()), "{}");
}

}  // namespace
}  // namespace RynCommon
