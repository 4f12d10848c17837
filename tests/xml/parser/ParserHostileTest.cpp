// Damaged documents: every one of them ends, in an error or at the end of the document. What large
// and deep ones cost is measured elsewhere.
#include <RynCommon/RyNameTable.h>

#include "ParserFixture.h"

using namespace xmltest;

namespace {

/// A document with some of everything.
const std::string& sample() {
    static const std::string good =
        "<?xml version='1.0' encoding='UTF-8' standalone='no'?>\r\n"
        "<!DOCTYPE p:a PUBLIC '-//W3C//DTD SVG//EN' 'nowhere:d' [<!-- c -->\n"
        "<!ENTITY e 'x&#38;f;<b>y</b>'><!ENTITY f \"'\"><!ENTITY % q \"<!ENTITY g 'g'>\">%q;\n"
        "<!ENTITY n SYSTEM 'nowhere:n' NDATA t><!ENTITY x PUBLIC 'p' 'nowhere:x'>\n"
        "<![IGNORE[<!ENTITY e '<'>]]><![INCLUDE[<!ELEMENT a (b|c)*>]]>\n"
        "<!ATTLIST p:a d NMTOKENS ' 1  2 ' i ID #IMPLIED xmlns:p CDATA #FIXED 'u'><?pi ]>?>]>\n"
        "<p:a i=' 7 ' p:w=\"&f;&#x41;&amp;\">\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80&e;&g;&x;\n"
        "<![CDATA[<&]]]]><?pi x?><!--c - c--><c xmlns='v' xmlns:r=\"w\" r:z=''/>&lt;</p:a>\n"
        "<!-- end -->";
    return good;
}

constexpr unsigned NO_DTD = 1u << RyXmlParser::NO_EXTERNAL_DTD;

void expectEnds(const std::string& what, const std::string& bytes) {
    Resources resources;
    resources.others = "";
    for (const bool tokens : {false, true}) {
        const Outcome thrown = run(bytes, {.features = NO_DTD, .tokens = tokens});
        EXPECT_TRUE(thrown.code != 0 || thrown.events.ends_with(".")) << what << thrown.events;
        const Outcome told = run(bytes, {.features = NO_DTD, .tokens = tokens, .callback = true});
        EXPECT_TRUE(told.events.ends_with(".") || told.code == 4100)
            << what << " " << told.summary() << told.message;
        EXPECT_EQ(told.codes.empty() && told.code == 0, thrown.code == 0)
            << what << " thrown " << thrown.summary() << " told " << told.summary();
    }
}

TEST(ParserHostile, SampleIsSound) {
    const Outcome outcome = run(sample(), {.features = NO_DTD});
    EXPECT_EQ(outcome.summary(),
              "S(p:a i=7 p:w='A& d=1 2 xmlns:p=u) "
              "T(\\u{E9}\\u{4E2D}\\u{1F600}x') S(b) T(y) E(b) T(g\\n<&]]) "
              "S(c xmlns=v xmlns:r=w r:z=) E(c) T(<) E(p:a) .")
        << outcome.message;
}

TEST(ParserHostile, EveryTruncationEnds) {
    for (std::size_t length = 0; length < sample().size(); ++length)
        expectEnds("cut at " + std::to_string(length), sample().substr(0, length));
}

TEST(ParserHostile, EveryDamagedByteEnds) {
    Resources resources;
    resources.others = "";
    const std::string replacements = "\x00<>&;\"'/! \xFF\xC3\x80%]["s;
    for (std::size_t i = 0; i < sample().size(); ++i) {
        for (const char c : replacements) {
            std::string damaged = sample();
            damaged[i] = c;
            const Outcome told = run(damaged, {.features = NO_DTD, .callback = true});
            EXPECT_TRUE(told.events.ends_with(".")) << "byte " << i << " " << told.summary();
        }
        std::string shorter = sample();
        shorter.erase(i, 1);
        expectEnds("without byte " + std::to_string(i), shorter);
    }
}

TEST(ParserHostile, ManyAttributes) {
    std::string plain = "<a", bound = "<a", defaults;
    for (int i = 0; i < 60'000; ++i) {
        const std::string n = std::to_string(i);
        plain += " x" + n + "='" + n + "'";
        bound += " xmlns:p" + n + "='u" + n + "' p" + n + ":x='1'";
        defaults += " x" + n + " CDATA '" + n + "'";
    }
    const auto count = [](const std::string& document) {
        Opened<ChunkBuf> parser(document, document.size());
        parser->next();
        return parser->getAttributeCount();
    };
    EXPECT_EQ(count(plain + "/>"), 60'000);
    EXPECT_EQ(count(bound + "/>"), 120'000);
    EXPECT_EQ(count("<!DOCTYPE a [<!ATTLIST a" + defaults + ">]>" + plain + "/>"), 60'000);
    // A short tag may not be blown up without bound.
    EXPECT_EQ(count("<!DOCTYPE a [<!ATTLIST a" + defaults + ">]><a/>"), 1024);
    EXPECT_EQ(run(plain + " x5='again'/>").code, 6152);
    EXPECT_EQ(run(bound + " xmlns:q='u7' q:x='again'/>").code, 6152);
}

TEST(ParserHostile, NamesThatAreNoNamesAreNotInterned) {
    const auto isKnown = [](const char* text) {
        return RynCommon::RyNameTable::getSharedNameTable()->lookupName(fromUtf8(text)) != 0;
    };
    run("<?xml version='zzVersion' encoding='zzEncoding' standalone='zzAlone'?><?zzTarget x?>"
        "<!zzKeyword><!DOCTYPE a [<![zzSection[]]>]><zzElement b='zzValue'>zzText</zzElement>",
        {.callback = true});
    for (const char* text : {"zzTarget", "zzKeyword", "zzSection", "zzValue", "zzText", "zzVersion",
                             "zzEncoding", "zzAlone"})
        EXPECT_FALSE(isKnown(text)) << text;
    EXPECT_TRUE(isKnown("zzElement"));
}

}  // namespace
