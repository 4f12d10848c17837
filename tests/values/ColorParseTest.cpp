// Colours from texts.
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

constexpr const char* UNKNOWN = "?";

/// Kind, unit and text; "?" for an unknown string that holds the whole text.
std::string parse(const UnicodeString& text, bool full) {
    const RyValue value = RyValue::parseColor(text, full);
    if (value.isUnknownString()) return value.getStringValue() == text ? UNKNOWN : "lost text";
    return describe(value);
}

TEST(ColorParse, BothSyntaxes) {
    const struct {
        const char16_t* text;
        const char* expected;
    } rows[] = {
        {u"#abc", "1/24 #AABBCC"},
        {u" #AABBCC ", "1/24 #AABBCC"},
        {u"#ffffffff", "1/24 #FFFFFF"},
        {u"#fe000000", "1/24 #000000"},
        {u"red", "3/23 red"},
        {u"not-a-color", "3/23 not-a-color"},
        {u"-12.5pt", "2/9 -12.5pt"},
        {u"rgb(100%,0,50%)", "1/24 #FF0080"},
        {u"rgb( 1 , +2 ,-3 ) ", "1/24 #010200"},
        {u"rgb(300,1.5,2.4)", "1/24 #FF0202"},
        {u"rgb(99999999999,0,0)", "1/24 #FF0000"},
        {u"rgb(1000%,-5%,0.1%)", "1/24 #FF0000"},
        {u"rgb-icc(255,0,50%,#CMYK,0,1,1,0)", "7/24 rgb-icc(255,0,128,#CMYK,0,1,1,0)"},
        {u"rgb-icc( 255 , 0 , 0 , #Grayscale , 50% )", "7/24 rgb-icc(255,0,0,#GRAYSCALE,0.5)"},
        {u"rgb-icc(#CMYK,0,1,1,0)", "7/24 rgb-icc(#CMYK,0,1,1,0)"},
        {u"rgb-icc(#RGB,1,0.5,0)", "1/24 #FF8000"},
        {u"rgb-icc(1,2,3,#REGISTRATION)", "7/24 rgb-icc(1,2,3,All)"},
        {u"rgb-icc(1,2,3,#SpotColor,'a b',.5,#CMYK,0,0,0,1)",
         "7/24 rgb-icc(1,2,3,\"a b\",0.5,0,0,0,1)"},
        {u"rgb-icc(1,2,3,Spot,1e-2)", "7/24 rgb-icc(1,2,3,Spot,0.01)"},
        {u"rgb-icc(1,2,3,p,1,0)", "7/24 rgb-icc(1,2,3,p,1,0,0,0)"},
        {u"rgb-icc(1,2,3,#p,1,0,0)", "7/24 rgb-icc(1,2,3,\"#p\",1,0,0,0)"},
        {u"rgb-icc(1,2,3,\"#CMYK\",1,0,0,0)", "7/24 rgb-icc(1,2,3,\"#CMYK\",1,0,0,0)"},
    };
    for (const auto& row : rows)
        for (const bool full : {false, true})
            EXPECT_EQ(parse(row.text, full), row.expected) << s(row.text) << " " << full;
    for (const UnicodeString& text :
         split("12foo||'red'|red blue|#abc def|rgb(1,2)|rgb(1,2,3,4)|rgb(1 2 3)|rgb(1,2,3|"
               "rgb(1pt,2,3)|rgb(1,(,3)|rgb(a,2,3)|rgb(1e2,2,3)|rgb (1,2,3)|rgb()|"
               "hsl(1,2,3)|rgb-icc(Spot,1)|rgb-icc(1,2,3)|rgb-icc(1,2,3,)|"
               "rgb-icc(1,2,3,Spot,)|rgb-icc(1,2,3,Spot,1|rgb-icc(1,2,3,Spot,1) x|"
               "rgb-icc(1,2,3,Spot,1pt)|rgb-icc(1,2,3,Spot,a)|rgb-icc(1,2,3,12,1)|"
               "rgb-icc(1,2,3,#CMYK,1,0,0)|rgb-icc(1,2,3,#CMYK,1,0,0,0,0)|"
               "rgb-icc(1,2,3,#CMYK,#CMYK,1,0,0,0)|rgb-icc(1,2,3,Spot,1,0,#CMYK,0,0,0,0)|"
               "rgb-icc(1,2,3,Spot,#CMYK,#CMYK,0,0,0,0)|rgb-icc(1,2,3,#GRAYSCALE,1,0)|"
               "rgb-icc(1,2,3,#SEPARATION,1)|rgb-icc(1,2,3,#SEPARATION,S,1,0)|"
               "rgb-icc(1,2,3,p,0,0,0,0,0,0,0)"))
        for (const bool full : {false, true})
            EXPECT_EQ(parse(text, full), UNKNOWN) << s(text) << " " << full;
}

TEST(ColorParse, FullSyntax) {
    const struct {
        const char16_t* text;
        const char* expected;
    } rows[] = {
        {u"icc-color(#CMYK,0,1,1,0)", "7/24 rgb-icc(#CMYK,0,1,1,0)"},
        {u"icc-color(Spot)", "7/24 rgb-icc(0,0,0,Spot)"},
        {u"icc-color(Spot,0.5)", "7/24 rgb-icc(128,128,128,Spot,0.5)"},
        {u"icc-color(p,1,0.5,0)", "7/24 rgb-icc(255,128,0,p,1,0.5,0,0)"},
        {u"red icc-color(#CMYK,0,1,1,0)", "7/24 rgb-icc(255,0,0,#CMYK,0,1,1,0)"},
        {u"RED icc-color( 'a,b' , 0.5)", "7/24 rgb-icc(255,0,0,\"a,b\",0.5)"},
        {u"#f00 icc-color(p 0,0 ,0\t1)", "7/24 rgb-icc(255,0,0,p,0,0,0,1)"},
        {u"rgb(100%,0,0)icc-color(#GRAYSCALE,0)", "7/24 rgb-icc(255,0,0,#GRAYSCALE,0)"},
        {u"transparent icc-color(#GRAYSCALE,0)", "7/24 transparent icc-color(#GRAYSCALE,0)"},
        {u"currentcolor icc-color(Spot,1)", "7/24 currentColor icc-color(Spot,1)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parse(row.text, true), row.expected) << s(row.text);
        EXPECT_EQ(parse(row.text, false), UNKNOWN) << s(row.text);
    }
    for (const UnicodeString& text :
         split("icc-color(p,0.1.2)|icc-color('p'0 1)|icc-color(p 0 ,,1)|"
               "nocolor icc-color(#GRAYSCALE,0)|12 icc-color(#GRAYSCALE,0)|"
               "red icc-color (#GRAYSCALE,0)|red rgb-icc(#GRAYSCALE,0)|"
               "red icc-color(#GRAYSCALE,0) x|red x"))
        EXPECT_EQ(parse(text, true), UNKNOWN) << s(text);
}

}  // namespace
}  // namespace RynCommon
