// Namespaces: scopes, faults, the built-in vocabularies and the declarations in force.
#include "ParserFixture.h"

#include <RynCommon/RyNameTable.h>

#include <cstdlib>

using namespace xmltest;

namespace {

TEST(ParserNamespace, BindingsHoldInTheirElement) {
    expectRows(
        {
            {"<a xmlns='u'><b xmlns='v'/><c/></a>",
             "S({u}a {XMLNS}xmlns=u) S({v}b {XMLNS}xmlns=v) E({v}b) S({u}c) E({u}c) E({u}a) ."},
            {"<a xmlns='u'><b xmlns=''><c/></b></a>",
             "S({u}a {XMLNS}xmlns=u) S(b {XMLNS}xmlns=) S(c) E(c) E(b) E({u}a) ."},
            {"<p:a p:x='1' x='2' xmlns:p='u' xmlns:q='v' q:x='3'/>",
             "S({u}p:a {u}p:x=1 x=2 {XMLNS}xmlns:p=u {XMLNS}xmlns:q=v {v}q:x=3) E({u}p:a) ."},
            {"<p:a xmlns:p='u'><p:b xmlns:p='v'><p:c/></p:b><p:d/></p:a>",
             "S({u}p:a {XMLNS}xmlns:p=u) S({v}p:b {XMLNS}xmlns:p=v) S({v}p:c) E({v}p:c) "
             "E({v}p:b) S({u}p:d) E({u}p:d) E({u}p:a) ."},
            {"<a><b xmlns:p='u'/><p:c/></a>", "S(a) S(b {XMLNS}xmlns:p=u) E(b) !6151"},
            {"<p:a xmlns:p='u'><b xmlns:p=''><p:c/></b></p:a>",
             "S({u}p:a {XMLNS}xmlns:p=u) S(b {XMLNS}xmlns:p=) !6151"},
            {"<p:a xmlns:p='u'><b xmlns:p=''/><p:c/></p:a>",
             "S({u}p:a {XMLNS}xmlns:p=u) S(b {XMLNS}xmlns:p=) E(b) S({u}p:c) E({u}p:c) "
             "E({u}p:a) ."},
            {"<a xmlns:xml='u' xml:lang='de'/>", "S(a {XMLNS}xmlns:xml=u {XML}xml:lang=de) E(a) ."},
            {"<xml:a/>", "S({XML}xml:a) E({XML}xml:a) ."},
            {"<a xmlns='&#117;'/>", "S({u}a {XMLNS}xmlns=u) E({u}a) ."},
            // A namespace that is spelt as an element is.
            {"<a xmlns:p='q:b' xmlns:q='u'><q:b/></a>",
             "S(a {XMLNS}xmlns:p=q:b {XMLNS}xmlns:q=u) S({u}q:b) E({u}q:b) E(a) ."},
            // A prefix that means something else from tag to tag.
            {"<a xmlns:p='u'><p:b/><p:b xmlns:p='v'/><p:b/></a>",
             "S(a {XMLNS}xmlns:p=u) S({u}p:b) E({u}p:b) S({v}p:b {XMLNS}xmlns:p=v) E({v}p:b) "
             "S({u}p:b) E({u}p:b) E(a) ."},
        },
        {.namespaces = true});
}

/// What a parser knows of names goes on to the next one, but not beyond the table of names. In a
/// process of its own, since the others go on with their names.
TEST(ParserNamespaceDeathTest, KnownNamesEndWithTheTable) {
    const auto readWithoutTable = [] {
        expectRows({{"<one-a two-b='1'/>", "S(one-a two-b=1) E(one-a) ."},
                    {"<two-b one-a='1'/>", "S(two-b one-a=1) E(two-b) ."}});
        RynCommon::RyNameTable::cleanup();
        expectRows({{"<three-c><one-a two-b='1'/></three-c>",
                     "S(three-c) S(one-a two-b=1) E(one-a) E(three-c) ."}});
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(readWithoutTable(), testing::ExitedWithCode(0), "");
}

TEST(ParserNamespace, UndeclaredPrefixes) {
    expectRows({
        {"<p:a/>", "!6151"},
        {"<a p:x='1'/>", "!6151"},
    });
    const Reading tolerant = {.features = 1u << RyXmlParser::TOLERANT_PREFIXES, .namespaces = true};
    expectRows(
        {
            {"<a p:x='1' q:x='2'/>", "S(a {p}p:x=1 {q}q:x=2) E(a) ."},
            {"<a p:x='1' xmlns:p='u'/>", "S(a {u}p:x=1 {XMLNS}xmlns:p=u) E(a) ."},
            {"<a p:x='1' p:x='2'/>", "!6152"},
            {"<p:a/>", "!6151"},
        },
        tolerant);
    expectRows({{"<p:a q:x='1'><b/></p:a>", "6151 6151 | S(p:a q:x=1) S(b) E(b) E(p:a) ."}},
               {.callback = true, .namespaces = true});
}

TEST(ParserNamespace, BuiltInVocabularies) {
    expectRows(
        {
            {"<svg/>", "S({SVG}svg) E({SVG}svg) ."},
            {"<svg xlink:href='#'><g/></svg>",
             "S({SVG}svg {XLINK}xlink:href=#) S({SVG}g) E({SVG}g) E({SVG}svg) ."},
            {"<svg xmlns='u' xlink:href='#'/>",
             "S({u}svg {XMLNS}xmlns=u {XLINK}xlink:href=#) E({u}svg) ."},
            {"<svg xmlns:xlink='u' xlink:href='#'/>",
             "S({SVG}svg {XMLNS}xmlns:xlink=u {u}xlink:href=#) E({SVG}svg) ."},
            {"<s:svg xmlns:s='u'><svg/></s:svg>",
             "S({u}s:svg {XMLNS}xmlns:s=u) S(svg) E(svg) E({u}s:svg) ."},
            {"<s:svg xmlns:s='u' xlink:href='#'/>", "!6151"},
            {"<a xlink:href='#'/>", "!6151"},
            {"<!DOCTYPE x PUBLIC '-//W3C//DTD SVG 1.1//EN' 'http://t.example/s.dtd'>"
             "<x xlink:href='#'><y/></x>",
             "S({SVG}x {XLINK}xlink:href=#) S({SVG}y) E({SVG}y) E({SVG}x) ."},
            {"<!DOCTYPE x PUBLIC '-//W3C//DTD SVG' 's'><x xmlns='u'/>",
             "S({u}x {XMLNS}xmlns=u) E({u}x) ."},
        },
        {.features = 1u << RyXmlParser::NO_EXTERNAL_DTD, .namespaces = true});
    const std::string chart =
        run("<chart xlink:href='#'><b/></chart>", {.namespaces = true}).events;
    EXPECT_TRUE(chart.starts_with("S({") && chart.find("{XLINK}xlink:href=#") != chart.npos)
        << chart;
    EXPECT_EQ(run("<a><chart/></a>", {.namespaces = true}).events, "S(a) S(chart) E(chart) E(a) .");
}

std::string declarations(const RyXmlParser& parser, int depth) {
    std::string result;
    for (int i = 0; i < parser.getNamespaceCount(depth); ++i)
        result += toUtf8(parser.getNamespacePrefix(i).toString()) + "=" +
                  toUtf8(parser.getNamespaceUri(i).toString()) + " ";
    return result;
}

TEST(ParserNamespace, DeclarationsInForceAreCounted) {
    Opened<ChunkBuf> parser("<a xmlns:p='1' xmlns='2'><b><c xmlns:q='3' xmlns:p='4'/><d/></b></a>",
                            3);
    EXPECT_EQ(parser->getNamespaceCount(0), 0);
    const auto uri = [&](const char* prefix) {
        return toUtf8(parser->getNamespace(RyName(fromUtf8(prefix))).toString());
    };
    parser->next();
    EXPECT_EQ(declarations(*parser, 1), "p=1 =2 ");
    parser->next();
    EXPECT_EQ(declarations(*parser, 2), "p=1 =2 ");
    for (int i = 0; i < 2; ++i) {  // at the start tag of c and at its end tag
        parser->next();
        EXPECT_EQ(declarations(*parser, 0), "");
        EXPECT_EQ(declarations(*parser, 1), "p=1 =2 ");
        EXPECT_EQ(declarations(*parser, 2), "p=1 =2 ");
        EXPECT_EQ(declarations(*parser, 3), "p=1 =2 q=3 p=4 ");
        EXPECT_EQ(uri("p") + uri("q") + uri("") + uri("r"), "432");
    }
    parser->next();
    EXPECT_EQ(dumpEvent(*parser), "S(d)");
    EXPECT_EQ(declarations(*parser, 3), "p=1 =2 ");
    EXPECT_EQ(uri("p") + uri("q") + uri("") + uri("r"), "12");
    EXPECT_EQ(uri("xml"), "http://www.w3.org/XML/1998/namespace");
    for (const int index : {-1, 2, 1000}) {
        EXPECT_TRUE(parser->getNamespacePrefix(index).isEmpty()) << index;
        EXPECT_TRUE(parser->getNamespaceUri(index).isEmpty()) << index;
    }
}

}  // namespace
