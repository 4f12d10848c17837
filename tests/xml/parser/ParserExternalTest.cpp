// External entities and DTDs, and the limits on what entities may make of a document.
#include <thread>

#include "ParserFixture.h"

using namespace xmltest;

namespace {

const std::string BASE = "http://t.example/x/";

std::string withSubset(const std::string& subset, const std::string& root) {
    return "<!DOCTYPE a [" + subset + "]>" + root;
}

TEST(ParserExternal, EntitiesAreReadThroughTheResolver) {
    Resources resources;
    resources.files[BASE + "latin.xml"] = "<?xml version='1.0' encoding='ISO-8859-1'?>\xE9<b/>\xE9";
    resources.files[BASE + "plain.xml"] = "<?xml encoding='UTF-8'?>\n\xC3\xA9";
    resources.files[BASE + "wide.xml"] = encode("UTF-16LE", U"\uFEFF<b>\u4E2D</b>");
    resources.files[BASE + "unmarked.xml"] =
        encode("UTF-16BE", U"<?xml version='1.0' encoding='UTF-16BE'?>\u4E2D");
    resources.files[BASE + "japan.xml"] = "<?xml encoding='Shift_JIS'?>\x93\xFA";
    resources.files[BASE + "nest.xml"] = "[&in;&plain;<c y='&in;'/>]";
    std::string subset = "<!ENTITY in 'i'>";
    for (const char* name : {"latin", "plain", "wide", "unmarked", "japan", "nest"})
        subset += "<!ENTITY "s + name + " SYSTEM '" + name + ".xml'>";
    subset += "<!ENTITY pub PUBLIC 'p' '" + BASE + "plain.xml'>";
    subset += "<!ENTITY both '(&latin;&plain;)'>";
    const std::pair<const char*, const char*> rows[] = {
        {"x&latin;y\xC3\xA9", "T(x\\u{E9}) S(b) E(b) T(\\u{E9}y\\u{E9})"},
        {"x&plain;y", "T(x\\n\\u{E9}y)"},
        {"x&wide;y\xC3\xA9", "T(x) S(b) T(\\u{4E2D}) E(b) T(y\\u{E9})"},
        {"x&unmarked;y\xC3\xA9", "T(x\\u{4E2D}y\\u{E9})"},
        {"x&japan;y\xC3\xA9", "T(x\\u{65E5}y\\u{E9})"},
        {"x&nest;y", "T(x[i\\n\\u{E9}) S(c y=i) E(c) T(]y)"},
        {"x&pub;y", "T(x\\n\\u{E9}y)"},
        {"x&both;y", "T(x(\\u{E9}) S(b) E(b) T(\\u{E9}\\n\\u{E9})y)"},
    };
    for (const auto& [content, expected] : rows) {
        expectInAllChunks(content, withSubset(subset, "<a>"s + content + "</a>"), {.base = BASE},
                          "S(a) "s + expected + " E(a) .");
    }
    const Outcome outcome = run(withSubset(subset, "<a>\n&wide;&nest;</b>"), {.base = BASE});
    EXPECT_EQ(outcome.encoding, "UTF-8");
    EXPECT_TRUE(outcome.message.ends_with("END_TAG, '" + BASE + "', Line 2, Col 16."))
        << outcome.message;
}

TEST(ParserExternal, MissingEntities) {
    Resources resources;
    const std::string skipped = withSubset("<!ENTITY e SYSTEM 'nowhere:e'>", "<a>x&e;y</a>");
    EXPECT_EQ(run(skipped).events, "S(a) T(xy) E(a) .");
    EXPECT_EQ(resources.fetched["nowhere:e"], 1);
    for (const bool callback : {false, true}) {
        const Outcome outcome =
            run(withSubset("<!ENTITY e SYSTEM 'file:///nowhere/at/all.xml'>", "<a>x&e;y</a>"),
                {.callback = callback});
        EXPECT_EQ(outcome.code, 4099);
        EXPECT_EQ(outcome.source, "RynCommon::XmlParserImpl::pushStream");
        EXPECT_TRUE(outcome.message.starts_with("Cannot open file: ")) << outcome.message;
    }
}

TEST(ParserExternal, RecursionByNameAndByUri) {
    Resources resources;
    resources.files[BASE + "self.xml"] = "x&e;";
    resources.files[BASE + "pair.xml"] = "x&f;";
    resources.files[BASE + "par.ent"] = "<!ENTITY % q SYSTEM 'par.ent'> %q;";
    resources.files[BASE + "doc.xml"] =
        "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e SYSTEM 'doc.xml'>]><a>&e;</a>";
    const std::vector<Row> rows = {
        {withSubset("<!ENTITY e SYSTEM 'self.xml'>", "<a>&e;</a>"), "S(a) !6174"},
        {withSubset("<!ENTITY e SYSTEM 'pair.xml'><!ENTITY f SYSTEM 'pair.xml'>", "<a>&e;</a>"),
         "S(a) !6174"},
        {withSubset("<!ENTITY e SYSTEM 'pair.xml'><!ENTITY f '&e;'>", "<a>&e;</a>"), "S(a) !6174"},
        {withSubset("<!ENTITY % p SYSTEM 'par.ent'> %p;", "<a/>"), "!6173"},
    };
    expectRows(rows, {.base = BASE});
    EXPECT_EQ(run("", {.uri = BASE + "doc.xml"}).summary(), "S(a) !6174");
}

TEST(ParserExternal, DtdIsFetchedOnceAndTheInternalSubsetComesFirst) {
    Resources resources;
    const std::string dtd = BASE + "once.dtd";
    resources.files[dtd] =
        "<?xml version='1.0' encoding='ISO-8859-1'?><!ENTITY e 'external'><!ENTITY f '\xE9'>"
        "<!ELEMENT a ANY><!ATTLIST a n NMTOKEN #IMPLIED><![INCLUDE[<!ENTITY g 'g'>]]>"
        "<!ENTITY % p \"<!ENTITY h 'h'>\">%p;<!-- end -->";
    const std::string document =
        "<!DOCTYPE a SYSTEM 'once.dtd' [<!ENTITY e 'internal'>]><a>&e;&f;&g;&h;</a>";
    expectInAllChunks("dtd", document, {.base = BASE}, "S(a) T(internal\\u{E9}gh) E(a) .");
    EXPECT_EQ(run("<!DOCTYPE a PUBLIC 'p' '" + dtd + "'><a>&e;</a>").events,
              "S(a) T(external) E(a) .");
    EXPECT_EQ(resources.fetched[dtd], 1);
    EXPECT_EQ(run(document, {.base = BASE, .features = 1}).summary(), "S(a) !6174");
    EXPECT_EQ(run("<!DOCTYPE a [%p;]><a/>").code, 6173) << "a parameter entity leaked";
}

TEST(ParserExternal, DtdMayUseParameterEntitiesInsideDeclarations) {
    Resources resources;
    resources.files[BASE + "inner.dtd"] =
        "<!ENTITY % yes 'INCLUDE'><!ENTITY % no 'IGNORE'><!ENTITY % p 'v'><!ENTITY % n 'g'>"
        "<![%yes;[<!ENTITY e '1'>]]><![ %no; [<!ENTITY e '2'>]]>"
        "<![%yes;[<![%no;[<!ENTITY f '0'>]]><!ENTITY f '3'>]]>"
        "<!ENTITY h '[%p;]'><!ENTITY %n; 'w'><!ELEMENT a (%p;)>"
        "<!ENTITY % more SYSTEM 'more.ent'>%more;";
    resources.files[BASE + "more.ent"] = "<?xml encoding='UTF-8'?><!ENTITY m '%p;m'>";
    expectInAllChunks("dtd", "<!DOCTYPE a SYSTEM 'inner.dtd'><a>&e;&f;&g;&h;&m;</a>",
                      {.base = BASE}, "S(a) T(13w[v]vm) E(a) .");
}

TEST(ParserExternal, DtdGivesNothingOfOneDocumentToAnother) {
    Resources resources;
    resources.files[BASE + "uses.dtd"] = "%q; <!ENTITY k 'k'>";
    const auto document = [](const std::string& value) {
        return "<!DOCTYPE a SYSTEM 'uses.dtd' [<!ENTITY % q \"<!ENTITY e '" + value +
               "'>\">]><a>&e;&k;</a>";
    };
    run(document("one"), {.base = BASE, .callback = true});
    const Outcome second = run(document("two"), {.base = BASE, .callback = true});
    EXPECT_EQ(second.events.find("one"), std::string::npos) << second.events;
}

TEST(ParserExternal, FailuresOfADtdAreThrownAndNotKept) {
    Resources resources;
    const std::string dtd = BASE + "late.dtd";
    const std::string document = "<!DOCTYPE a SYSTEM 'late.dtd'><a>&e;</a>";
    for (const bool callback : {false, true}) {
        const Outcome outcome = run(document, {.base = BASE, .callback = callback});
        EXPECT_EQ(outcome.code, 4099);
        EXPECT_EQ(outcome.message, "Cannot open file: " + dtd);
    }
    resources.files[dtd] = "<!ENTITY e 'v'><!ENTITY f 'w'";
    for (const bool callback : {false, true}) {
        const Outcome outcome = run(document, {.base = BASE, .callback = callback});
        EXPECT_EQ(outcome.summary(), "!6170");
        EXPECT_NE(outcome.message.find("'" + dtd + "', Line 1"), std::string::npos)
            << outcome.message;
    }
    resources.files[dtd] = "<!ENTITY e 'v'>";
    EXPECT_EQ(run(document, {.base = BASE}).events, "S(a) T(v) E(a) .");
    EXPECT_EQ(run("<!DOCTYPE a SYSTEM 'nowhere:d.dtd'><a/>").code, 4099);
}

TEST(ParserExternal, CallbackIsBackAfterADamagedDtd) {
    Resources resources;
    resources.files[BASE + "bad.dtd"] = "<!ENTITY e 'v'";
    std::vector<int> codes;
    Opened<ChunkBuf> parser("<!DOCTYPE a SYSTEM '" + BASE + "bad.dtd'><a/>", 100);
    parser->setCallbackError(
        [](const RyError& error, void* user) {
            static_cast<std::vector<int>*>(user)->push_back(error.getErrorCode());
        },
        &codes);
    EXPECT_EQ(errorOf([&] { parser->next(); }).getErrorCode(), 6170);
    EXPECT_TRUE(codes.empty());
    ChunkBuf second("<a></b>", 100);
    std::istream secondIn(&second);
    parser->setInput(secondIn, UnicodeString(), UnicodeString());
    while (parser->next() != RyXmlParser::END_DOCUMENT) continue;
    EXPECT_EQ(codes, std::vector<int>{6150});
}

TEST(ParserExternal, ThreadsShareOneFetch) {
    Resources resources;
    resources.files[BASE + "shared.dtd"] = repeat("<!-- filler -->", 20000) + "<!ENTITY e 'v'>";
    std::vector<std::string> events(8);
    std::vector<std::thread> threads;
    for (std::string& result : events) {
        threads.emplace_back([&result] {
            result = run("<!DOCTYPE a SYSTEM 'shared.dtd'><a>&e;</a>", {.base = BASE}).events;
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& result : events) EXPECT_EQ(result, "S(a) T(v) E(a) .");
    EXPECT_EQ(resources.fetched[BASE + "shared.dtd"], 1);
}

/// Entities e0 to e`levels`, each ten of the one before.
std::string laughs(int levels) {
    std::string result = "<!ENTITY e0 'lollollol'>";
    for (int i = 1; i <= levels; ++i) {
        result += "<!ENTITY e" + std::to_string(i) + " '" +
                  repeat("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return result;
}

/// Entities e0 to e`last`, each a reference to the one before.
std::string chain(int last) {
    std::string result = "<!ENTITY e0 'x'>";
    for (int i = 1; i <= last; ++i) {
        result += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    }
    return result;
}

void expectLimit(const std::string& what, const std::string& document, const Reading& how = {}) {
    for (const bool callback : {false, true}) {
        Reading reading = how;
        reading.callback = callback;
        const Outcome outcome = run(document, reading);
        EXPECT_EQ(outcome.code & 0xF800, static_cast<int>(RynCommon::RYERROR_XML)) << what;
        EXPECT_TRUE(outcome.message.starts_with("XML parser error.")) << what << outcome.message;
        EXPECT_EQ(outcome.codes, "") << what;
    }
}

TEST(ParserExternal, ExpansionIsCapped) {
    expectLimit("laughs in content", withSubset(laughs(12), "<a>&e12;</a>"));
    expectLimit("laughs in a value", withSubset(laughs(12), "<a x='&e12;'/>"));
    expectLimit("elements", withSubset("<!ENTITY e '" + repeat("<b x=\"1\"/>", 10'000) + "'>",
                                       "<a>" + repeat("&e;", 1000) + "</a>"));
    expectLimit("deep chain", withSubset(chain(70), "<a>&e70;</a>"));
    expectLimit("deep chain in a value", withSubset(chain(70), "<a x='&e70;'/>"));
    EXPECT_EQ(run(withSubset(chain(60), "<a y='&e60;'>&e60;</a>")).events, "S(a y=x) T(x) E(a) .");
    Resources resources;
    std::string dtd = "<!ENTITY % e0 'lollollol'>";
    for (int i = 1; i <= 12; ++i) {
        dtd += "<!ENTITY % e" + std::to_string(i) + " '" +
               repeat("%e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    resources.files[BASE + "laughs.dtd"] = dtd + "<!ENTITY e '%e12;'>";
    expectLimit("laughs of parameter entities", "<!DOCTYPE a SYSTEM 'laughs.dtd'><a>&e;</a>",
                {.base = BASE});
}

TEST(ParserExternal, LimitsCanBeSet) {
    RyXmlLimits tight;
    tight.expansionThreshold = 1000;
    tight.expansionFactor = 2;
    tight.nestedInputs = 8;
    expectLimit("small threshold", withSubset(laughs(4), "<a>&e4;</a>"), {.limits = tight});
    expectLimit("few inputs", withSubset(chain(12), "<a>&e12;</a>"), {.limits = tight});
    EXPECT_EQ(RyXmlUtil::createXmlParser()->getLimits().nestedInputs, 64u);
    RyXmlLimits loose;
    loose.nestedInputs = 200;
    EXPECT_EQ(run(withSubset(chain(150), "<a>&e150;</a>"), {.limits = loose}).events,
              "S(a) T(x) E(a) .");
}

TEST(ParserExternal, SizesCanBeLimited) {
    const struct {
        const char* what;
        std::string document;
        std::uint32_t RyXmlLimits::*limit;
        std::uint32_t reached;
    } rows[] = {
        {"attributes", "<a x='1' y='2' xmlns:p='u'/>", &RyXmlLimits::attributes, 3},
        {"declared attributes", withSubset("<!ATTLIST a d CDATA 'v' e CDATA 'w'>", "<a x='1'/>"),
         &RyXmlLimits::attributes, 3},
        {"element with a prefix", "<pre:element xmlns:pre='u'/>", &RyXmlLimits::nameLength, 11},
        {"attribute", "<a bcdef='1'/>", &RyXmlLimits::nameLength, 5},
        {"entity", withSubset("<!ENTITY an-entity 'x'>", "<a>&an-entity;</a>"),
         &RyXmlLimits::nameLength, 9},
        {"declared attribute", withSubset("<!ATTLIST a attribute CDATA 'v'>", "<a/>"),
         &RyXmlLimits::nameLength, 9},
        {"keyword", withSubset("<!ENTITY e 'x'>", "<a/>"), &RyXmlLimits::nameLength, 7},
        {"target", "<?target x?><a/>", &RyXmlLimits::nameLength, 6},
        {"depth", "<a><b><c/></b><d/></a>", &RyXmlLimits::depth, 3},
        {"depth in an entity", withSubset("<!ENTITY e '<b><c/></b>'>", "<a>&e;</a>"),
         &RyXmlLimits::depth, 3},
    };
    for (const auto& row : rows) {
        RyXmlLimits limits;
        EXPECT_EQ(limits.*row.limit, RyXmlLimits::UNLIMITED) << row.what;
        for (const std::size_t chunk : {0, 1, 7}) {
            limits.*row.limit = row.reached;
            EXPECT_EQ(run(row.document, {.chunk = chunk, .limits = limits}).code, 0)
                << row.what << " in pieces of " << chunk;
            limits.*row.limit = row.reached - 1;
            expectLimit(row.what, row.document, {.chunk = chunk, .limits = limits});
        }
    }
    // A name of an earlier document is known, but not within a new limit.
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    for (const std::uint32_t length : {3, 2}) {
        std::istringstream in("<abc/>");
        RyXmlLimits limits;
        limits.nameLength = length;
        parser->setLimits(limits);
        parser->setInput(in, UnicodeString(), UnicodeString());
        EXPECT_EQ(errorOf([&] { parser->next(); }).getErrorCode(), length == 3 ? 0 : 6208);
    }
}

TEST(ParserExternal, ManySmallReferencesPass) {
    for (const std::string reference : {"&e;", "&amp;", "&#120;"}) {
        const Outcome outcome =
            run(withSubset("<!ENTITY e 'x'>", "<a>" + repeat(reference, 1'000'000) + "</a>"));
        EXPECT_EQ(outcome.code, 0) << reference << outcome.message.substr(0, 200);
        EXPECT_EQ(outcome.events.size(), "S(a) T() E(a) ."s.size() + 1'000'000) << reference;
    }
}

}  // namespace
