// Entities declared inside the document, character references, attribute declarations.
#include "ParserFixture.h"

using namespace xmltest;

namespace {

std::string withSubset(const std::string& subset, const std::string& root) {
    return "<!DOCTYPE a [" + subset + "]>" + root;
}

TEST(ParserEntity, CharacterReferences) {
    const std::pair<const char*, const char*> rows[] = {
        {"&#9;&#10;&#13;&#32;", "\\t\\n\\r "},
        {"&#xD7FF;", "\\u{D7FF}"},
        {"&#xFFFD;", "\\u{FFFD}"},
        {"&#x10000;", "\\u{10000}"},
        {"&#x10FFFF;&#x10ffff;&#1114111;", "\\u{10FFFF}\\u{10FFFF}\\u{10FFFF}"},
        {"&#x00000000000000000041;&#000000000000065;", "AA"},
    };
    for (const auto& [reference, text] : rows)
        expectRows({{"<a>"s + reference + "</a>", "S(a) T("s + text + ") E(a) ."},
                    {"<a x='"s + reference + "'/>", "S(a x="s + text + ") E(a) ."}});
    // The last two are 65 above 2^32 and 2^64.
    for (const std::string refused :
         {"&#0;", "&#8;", "&#11;", "&#x1F;", "&#xD800;", "&#xDFFF;", "&#xFFFE;", "&#xFFFF;",
          "&#1114112;", "&#4294967361;", "&#x10000000000000041;"}) {
        for (const std::string& input : {"<a>" + refused + "</a>", "<a x='" + refused + "'/>"}) {
            const Outcome outcome = run(input);
            EXPECT_EQ(outcome.code, 6195) << input;
            EXPECT_TRUE(outcome.message.starts_with("Invalid unicode character: " + refused + "\n"))
                << outcome.message;
        }
    }
    const std::string digits = repeat("9", 100000);
    EXPECT_EQ(run("<a>&#" + digits + ";</a>").code, 6195);
    EXPECT_EQ(run("<a>&#" + repeat("0", 100000) + "65;</a>").events, "S(a) T(A) E(a) .");
}

TEST(ParserEntity, InternalEntities) {
    expectRows({
        {withSubset("<!ENTITY e 'v'>", "<a>x&e;y<![CDATA[&e;]]></a>"), "S(a) T(xvy&e;) E(a) ."},
        {withSubset("<!ENTITY e ''>", "<a>&e;</a>"), "S(a) E(a) ."},
        {withSubset("<!ENTITY e 'x<b>y</b>z'>", "<a>1&e;2</a>"),
         "S(a) T(1x) S(b) T(y) E(b) T(z2) E(a) ."},
        {withSubset("<!ENTITY e '<b/>'>", "<a>&e;&e;</a>"), "S(a) S(b) E(b) S(b) E(b) E(a) ."},
        {withSubset("<!ENTITY e '1&f;2'><!ENTITY f '[&g;]'><!ENTITY g 'g'>", "<a>&e;</a>"),
         "S(a) T(1[g]2) E(a) ."},
        {withSubset("<!ENTITY e '&lt;b/>&amp;&#60;&#x3e;'>", "<a>&e;</a>"), "S(a) T(<b/>&) !6148"},
        {withSubset("<!ENTITY e '&#38;#60;'>", "<a>&e;</a>"), "S(a) T(<) E(a) ."},
        {withSubset("<!ENTITY e '&#x3c;b/>'>", "<a>&e;</a>"), "S(a) S(b) E(b) E(a) ."},
        {withSubset("<!ENTITY e '<![CDATA[<&#38;]]><!--c--><?p i?>'>", "<a>&e;</a>"),
         "S(a) T(<&) E(a) ."},
        {withSubset("<!ENTITY e \"'\"><!ENTITY f '\"'>", "<a>&e;&f;</a>"), "S(a) T('\") E(a) ."},
        {withSubset("<!ENTITY e '\xF0\x9F\x98\x80'>", "<a>&e;</a>"), "S(a) T(\\u{1F600}) E(a) ."},
        {withSubset("<!ENTITY\n e\t'v' >", "<a>&e;</a>"), "S(a) T(v) E(a) ."},
    });
}

TEST(ParserEntity, InAttributeValues) {
    expectRows({
        {withSubset("<!ENTITY e 'v'>", "<a x='1&e;2' y=\"&e;\"/>"), "S(a x=1v2 y=v) E(a) ."},
        {withSubset("<!ENTITY e \"'\"><!ENTITY f '\"'>", "<a x='&e;&f;' y=\"&f;&e;\"/>"),
         "S(a x='\" y=\"') E(a) ."},
        {withSubset("<!ENTITY e '[&f;]'><!ENTITY f \"'\">", "<a x='&e;' y=''/>"),
         "S(a x=['] y=) E(a) ."},
        {withSubset("<!ENTITY e '1&#10;2&#9;3&#13;4\n5'>", "<a x='&e;'/>"),
         "S(a x=1 2 3 4 5) E(a) ."},
        {withSubset("<!ENTITY e '1&#38;#10;2'>", "<a x='&e;'/>"), "S(a x=1\\n2) E(a) ."},
        {withSubset("<!ENTITY e '&lt;&amp;'>", "<a x='&e;'/>"), "S(a x=<&) E(a) ."},
        {withSubset("<!ENTITY e '<b/>'>", "<a x='&e;'/>"), "!6192"},
        {withSubset("<!ENTITY e SYSTEM 'e.xml'>", "<a x='&e;'/>"), "!6174"},
        {withSubset("<!ENTITY e '&f;'><!ENTITY f SYSTEM 'e.xml'>", "<a x='&e;'/>"), "!6174"},
        {withSubset("<!ENTITY e SYSTEM 'e.gif' NDATA gif>", "<a x='&e;'/>"), "!6174"},
        {withSubset("<!ENTITY e SYSTEM 'e.gif' NDATA gif>", "<a>&e;</a>"), "S(a) !6174"},
    });
}

TEST(ParserEntity, FirstDeclarationBindsAndPredefinedStay) {
    expectRows({
        {withSubset("<!ENTITY e '1'><!ENTITY e '2'>", "<a>&e;</a>"), "S(a) T(1) E(a) ."},
        {withSubset("<!ENTITY lt 'x'><!ENTITY amp 'y'>", "<a>&lt;&amp;</a>"), "S(a) T(<&) E(a) ."},
        {withSubset("<!ENTITY e SYSTEM 'nowhere:e'><!ENTITY e '2'>", "<a>[&e;]</a>"),
         "S(a) T([]) E(a) ."},
        {withSubset("<!ENTITY % e '1'><!ENTITY e '2'>", "<a>&e;</a>"), "S(a) T(2) E(a) ."},
        {withSubset("<!ENTITY % p \"<!ENTITY e '1'>\"><!ENTITY % p \"<!ENTITY e '2'>\">%p;",
                    "<a>&e;</a>"),
         "S(a) T(1) E(a) ."},
    });
}

TEST(ParserEntity, RecursionIsAnUndefinedEntity) {
    expectRows({
        {withSubset("<!ENTITY e '&e;'>", "<a>&e;</a>"), "S(a) !6174"},
        {withSubset("<!ENTITY e 'x&f;'><!ENTITY f '<b/>&e;'>", "<a>&e;</a>"),
         "S(a) T(x) S(b) E(b) !6174"},
        {withSubset("<!ENTITY e '&e;'>", "<a x='&e;'/>"), "!6174"},
        {withSubset("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "<a x='&e;'/>"), "!6174"},
        {withSubset("<!ENTITY e \"<b x='&#38;e;'/>\">", "<a>&e;</a>"), "S(a) !6174"},
        {withSubset("<!ENTITY % p '&#37;p;'>%p;", "<a/>"), "!6173"},
        {withSubset("<!ENTITY % p '&#37;q;'><!ENTITY % q '&#37;p;'>%p;", "<a/>"), "!6173"},
    });
    expectRows(
        {
            {withSubset("<!ENTITY e 'x&e;y'>", "<a>&e;</a>"), "7710 | S(a) T(xy) E(a) ."},
            {withSubset("<!ENTITY e 'x&e;y'>", "<a x='&e;'/>"), "7710 | S(a x=xy) E(a) ."},
            {withSubset("<!ENTITY % p '&#37;p;'>%p;", "<a/>"), "7709 | S(a) E(a) ."},
        },
        {.callback = true});
    // The same entity twice in a row is no recursion.
    expectRows({{withSubset("<!ENTITY e 'x'><!ENTITY f '&e;&e;'>", "<a y='&f;&f;'>&f;&e;&f;</a>"),
                 "S(a y=xxxx) T(xxxxx) E(a) ."}});
}

TEST(ParserEntity, ParameterEntitiesAndConditionalSections) {
    expectRows({
        {withSubset("<!ENTITY % p \"<!ENTITY e 'v'>\"> %p;", "<a>&e;</a>"), "S(a) T(v) E(a) ."},
        {withSubset("<!ENTITY % p \"&#37;q;<!ENTITY e 'v'>\">"
                    "<!ENTITY % q \"<!ENTITY f 'w'>\"> %p;",
                    "<a>&e;&f;</a>"),
         "S(a) T(vw) E(a) ."},
        {withSubset("<![ IGNORE [<![INCLUDE[<!ENTITY e '1'>]]><!ENTITY e '3'>]]><!ENTITY e '2'>",
                    "<a>&e;</a>"),
         "S(a) T(2) E(a) ."},
        {withSubset("<![INCLUDE[<!ENTITY e '1'><![IGNORE[<!ENTITY f '0'>]]>]]><!ENTITY f '2'>",
                    "<a>&e;&f;</a>"),
         "S(a) T(12) E(a) ."},
    });
}

TEST(ParserEntity, OtherDeclarationsAreSkipped) {
    expectRows({
        {withSubset("<!-- ]> \" ' <!ENTITY e '0'> --><?p ]> \" ?><!ELEMENT a (b|c)*>"
                    "<!NOTATION n SYSTEM ']>'><!ELEMENT b EMPTY><!ENTITY e ']>'>",
                    "<a>&e;</a>"),
         "S(a) T(]>) E(a) ."},
        {withSubset("\r\n\t <!NOTATION n PUBLIC \"it's >\">\r\n", "<a/>"), "S(a) E(a) ."},
        {"<!DOCTYPE p:a><a/>", "S(a) E(a) ."},
    });
}

TEST(ParserEntity, AttributeDeclarationsGiveDefaultsAndTypes) {
    expectRows(
        {
            {withSubset("<!ATTLIST a x CDATA 'd' y (p|q) 'p' z NMTOKEN #IMPLIED r CDATA #REQUIRED "
                        "w CDATA #FIXED 'f' n NOTATION (n|m) 'm'>",
                        "<a/>"),
             "S(a x=d y=p w=f n=m) E(a) ."},
            {withSubset("<!ATTLIST a x CDATA 'd' y CDATA 'e'>", "<a y='1'><b/><a/></a>"),
             "S(a y=1 x=d) S(b) E(b) S(a x=d y=e) E(a) E(a) ."},
            {withSubset("<!ATTLIST a x CDATA '1'><!ATTLIST a x CDATA '2' y CDATA '3'>", "<a/>"),
             "S(a x=1 y=3) E(a) ."},
            {withSubset("<!ATTLIST a x NMTOKENS #IMPLIED y CDATA #IMPLIED z ID #IMPLIED>",
                        "<a x='  1 \n  2 ' y='  1   2 ' z=' i '/>"),
             "S(a x=1 2 y=  1   2  z=i) E(a) ."},
            {withSubset("<!ATTLIST a x NMTOKENS '  p \t q '>", "<a/>"), "S(a x=p q) E(a) ."},
            {withSubset("<!ATTLIST a x (p|q) #IMPLIED>", "<a x=' p '/>"), "S(a x=p) E(a) ."},
            {withSubset("<!ENTITY e 'v'><!ATTLIST a x CDATA 'a&e;&#65;&lt;'>", "<a/>"),
             "S(a x=avA<) E(a) ."},
            {withSubset("<!ATTLIST a xmlns CDATA 'u'>", "<a><b/></a>"),
             "S({u}a {XMLNS}xmlns=u) S({u}b) E({u}b) E({u}a) ."},
            {withSubset("<!ATTLIST a xmlns:p CDATA #FIXED 'u' p:x CDATA 'd'>", "<a/>"),
             "S(a {XMLNS}xmlns:p=u {u}p:x=d) E(a) ."},
            {withSubset("<!ATTLIST p:a x CDATA 'd'>", "<p:a xmlns:p='u'><a xmlns='u'/></p:a>"),
             "S({u}p:a {XMLNS}xmlns:p=u x=d) S({u}a {XMLNS}xmlns=u) E({u}a) E({u}p:a) ."},
        },
        {.namespaces = true});
}

TEST(ParserEntity, CallerDefinesEntities) {
    const auto define = [](RyXmlParser& parser) {
        parser.defineEntityReplacementText(RyName(fromUtf8("e")), fromUtf8("old"));
        parser.defineEntityReplacementText(RyName(fromUtf8("e")), fromUtf8("x<b/>&#65;"));
    };
    expectRows({{"<a>&e;</a>", "S(a) T(x) S(b) E(b) T(A) E(a) ."}, {"<a y='&e;'/>", "!6192"}},
               {.prepare = define});
}

TEST(ParserEntity, MathMLCharacters) {
    Resources resources;
    const std::string head =
        "<!DOCTYPE math PUBLIC '-//W3C//DTD MathML 2.0//EN' "
        "'http://www.w3.org/Math/DTD/mathml2/mathml2.dtd' [<!ENTITY beta 'mine'>]>";
    const std::vector<Row> rows = {
        {head + "<math>&alpha;&beta;&lt;&amp;&gt;&quot;&apos;</math>",
         "S(math) T(\\u{3B1}mine<&>\"') E(math) ."},
        {head + "<math x='&alpha;&lt;&nvlt;&amp;'/>", "S(math x=\\u{3B1}<<\\u{20D2}&) E(math) ."},
        {head + "<math>&NotEqualTilde;&Afr;&nvlt;&zeetrf;</math>",
         "S(math) T(\\u{2242}\\u{338}\\u{1D504}<\\u{20D2}\\u{2128}) E(math) ."},
        {head + "<math>&nosuch;</math>", "S(math) !6174"},
    };
    expectRows(rows);
    expectRows({{head + "<math>&beta;&alpha;</math>", "S(math) !6174"}},
               {.features = 1u << RyXmlParser::NO_EXTERNAL_DTD});
    EXPECT_TRUE(resources.fetched.empty());
    expectRows({{"<a>&alpha;&lt;&nvlt;</a>", "S(a) T(\\u{3B1}<<\\u{20D2}) E(a) ."}},
               {.prepare = [](RyXmlParser& parser) { parser.addMathMLEntityMap(); }});
    expectRows({{"<a>&alpha;</a>", "S(a) !6174"}});
}

}  // namespace
