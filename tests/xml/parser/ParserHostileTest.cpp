// Documents made to hurt: every one of them ends, in an error or at the end of the document.
#include <RynCommon/RyNameTable.h>

#include <set>
#include <sstream>

#include "ParserFixture.h"

using namespace xmltest;

namespace {

/// A document with some of everything.
const std::string& sample() {
    static const std::string text =
        "<?xml version='1.0' encoding='UTF-8' standalone='no'?>\r\n"
        "<!DOCTYPE p:a PUBLIC '-//W3C//DTD SVG//EN' 'nowhere:d' [<!-- c -->\n"
        "<!ENTITY e 'x&#38;f;<b>y</b>'><!ENTITY f \"'\"><!ENTITY % q \"<!ENTITY g 'g'>\">%q;\n"
        "<!ENTITY n SYSTEM 'nowhere:n' NDATA t><!ENTITY x PUBLIC 'p' 'nowhere:x'>\n"
        "<![IGNORE[<!ENTITY e '<'>]]><![INCLUDE[<!ELEMENT a (b|c)*>]]>\n"
        "<!ATTLIST p:a d NMTOKENS ' 1  2 ' i ID #IMPLIED xmlns:p CDATA #FIXED 'u'><?pi ]>?>]>\n"
        "<p:a i=' 7 ' p:w=\"&e1;&f;&#x41;&amp;\">\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80&e;&g;&x;\n"
        "<![CDATA[<&]]]]><?pi x?><!--c - c--><c xmlns='v' xmlns:r=\"w\" r:z=''/>&lt;</p:a>\n"
        "<!-- end -->";
    static const std::string good = [] {
        std::string result = text;
        result.erase(result.find("&e1;"), 4);
        return result;
    }();
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

TEST(ParserHostile, EveryStartOfMarkupEnds) {
    std::istringstream longest(
        "<!--x--~<!---~<![CDATA[]]~<b c='&#~<b c='1'~<b/~<b p:~<p:~<:~</a ~</p:~&#x4~"
        "&e~<?p ?~<?xml version='1.0'?~<!DOCTYPE a SYSTEM '~<!DOCTYPE a PUBLIC 'p'~"
        "<!DOCTYPE a []~<!DOCTYPE a [<!--~<!DOCTYPE a [<?p~<!DOCTYPE a [%p~"
        "<!DOCTYPE a [<!ENTITY %~<!DOCTYPE a [<!ENTITY e 'v'~"
        "<!DOCTYPE a [<!ENTITY e SYSTEM 's' NDATA~<!DOCTYPE a [<![IGNORE[<![~"
        "<!DOCTYPE a [<![INCLUDE[~<!DOCTYPE a [<!ATTLIST a b (~"
        "<!DOCTYPE a [<!ATTLIST a b CDATA '~<!DOCTYPE a [<!ELEMENT a (\"~"
        "<!DOCTYPE a [<!NOTATION 'x");
    std::set<std::string> starts;  // and all that these begin with
    for (std::string text; std::getline(longest, text, '~');)
        for (; !text.empty(); text.pop_back()) starts.insert(text);
    for (const std::string& start : starts) {
        for (const std::string& before : {""s, "<a>"s, "<a/>"s}) {
            expectEnds(before + start, before + start);
            expectEnds(before + start + ">", before + start + ">");
            expectEnds(before + start + "<a>", before + start + "<a>");
            expectEnds(before + start + " repeated", before + repeat(start, 50));
        }
    }
}

TEST(ParserHostile, MegabytesOfOneCharacter) {
    for (const std::string piece : {"<", ">", "&", "/", "]", "]]>", "<!", "<a ", "</a>", "&#", "\r",
                                    "%", "\x80", "\xEF\xBF\xBF", "-", "<!--", "<?", "'", "="}) {
        const std::string many = repeat(piece, 50'000);
        for (const std::string before : {"", "<a>", "<a b='", "<!--", "<!DOCTYPE a ["}) {
            std::size_t errors = 0;
            const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
            parser->setCallbackError(
                [](const RyError&, void* user) { ++*static_cast<std::size_t*>(user); }, &errors);
            ChunkBuf buffer(before + many, 1 << 16);
            std::istream in(&buffer);
            parser->setInput(in, UnicodeString(), UnicodeString());
            std::size_t events = 0;
            while (parser->nextToken() != RyXmlParser::END_DOCUMENT) ++events;
            EXPECT_LE(errors + events, 8 * (before.size() + many.size())) << before << piece;
        }
    }
}

TEST(ParserHostile, DeepTrees) {
    for (const std::size_t depth : {100'000u, 1'000'000u}) {
        const std::string document =
            "<p:r xmlns:p='u'>" + repeat("<p:a>", depth) + repeat("</p:a>", depth) + "</p:r>";
        Opened<ChunkBuf> parser(document, document.size());
        int deepest = 0;
        while (parser->next() != RyXmlParser::END_DOCUMENT) {
            deepest = std::max(deepest, parser->getDepth());
            if (parser->getNamespace().isEmpty()) FAIL() << "at depth " << parser->getDepth();
        }
        EXPECT_EQ(deepest, static_cast<int>(depth) + 1);
    }
    const std::string open = repeat("<a>", 1'000'000);
    EXPECT_EQ(run(open).code, 6145);
    EXPECT_EQ(run(open + "</b>").code, 6150);
    // Each level with a binding of its own.
    std::string bound;
    for (int i = 0; i < 100'000; ++i)
        bound += "<p" + std::to_string(i) + ":a xmlns:p" + std::to_string(i) + "='u'>";
    EXPECT_EQ(run(bound + "<p0:b/><p99999:b/><q:b/>").code, 6151);
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
    EXPECT_EQ(run("<r>" + repeat(bound + "/>", 3) + "</r>").code, 0);
}

TEST(ParserHostile, HugeNamesAndValues) {
    const std::string huge = repeat("n", 10'000'000);
    const std::string name = repeat("n", 2'000'000);
    const struct {
        const char* what;
        std::string document;
        int code;
    } rows[] = {
        {"element", "<" + huge + " " + huge + "='1'></" + huge + ">", 0},
        {"mismatch", "<" + name + "></" + name + "x>", 6150},
        {"prefix", "<" + name + ":a/>", 6151},
        {"attribute", "<a " + name + "='1'/>", 0},
        {"entity", "<a>&" + huge + ";</a>", 6174},
        {"target", "<?" + name + " x?><a/>", 0},
        {"keyword", "<!" + name + "><a/>", 6186},
        {"document type", "<!DOCTYPE " + name + "><a/>", 0},
        {"value", "<a x='" + name + "' y='" + name + "'/>", 0},
        {"text", "<a>" + name + "</a>", 0},
        {"comment", "<!--" + name + "--><a/>", 0},
        {"version", "<?xml version='" + name + "'?><a/>", 6182},
        {"encoding", "<?xml version='1.0' encoding='" + name + "'?><a/>", 6197},
    };
    for (const auto& row : rows) EXPECT_EQ(run(row.document).code, row.code) << row.what;
}

TEST(ParserHostile, NamesThatAreNoNamesAreNotInterned) {
    const auto isKnown = [](const char* text) {
        return RynCommon::RyNameTable::getSharedNameTable()->lookupName(fromUtf8(text)) != 0;
    };
    run("<?zzTarget x?><!zzKeyword><!DOCTYPE a [<![zzSection[]]>]><a b='zzValue'>zzText</a>",
        {.callback = true});
    run("<?xml version='zzVersion' encoding='zzEncoding' standalone='zzAlone'?><zzElement/>",
        {.callback = true});
    for (const char* text : {"zzTarget", "zzKeyword", "zzSection", "zzValue", "zzText", "zzVersion",
                             "zzEncoding", "zzAlone"}) {
        EXPECT_FALSE(isKnown(text)) << text;
    }
    EXPECT_TRUE(isKnown("zzElement"));
}

}  // namespace
