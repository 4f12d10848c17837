// The events of next() and nextToken(), and what the accessors say at each of them.
#include <fstream>
#include <sstream>

#include "ParserFixture.h"

using namespace xmltest;

namespace {

TEST(ParserEvents, NextMergesCharacterDataAndPassesOverTheRest) {
    expectRows({
        {"<a/>", "S(a) E(a) ."},
        {"<a />", "S(a) E(a) ."},
        {"<a x = \"1\"\n y\t=\r\n\"2\"  ></a \n>", "S(a x=1 y=2) E(a) ."},
        {"<a> \n\t</a>", "S(a) T( \\n\\t) E(a) ."},
        {" \n<a/>\n ", "S(a) E(a) ."},
        {"<a>x<!--c-->y<?p i?>z</a>", "S(a) T(xyz) E(a) ."},
        {"<a><!--only--><?p i?></a>", "S(a) E(a) ."},
        {"<a><![CDATA[]]></a>", "S(a) E(a) ."},
        {"<a>x<![CDATA[]]>y</a>", "S(a) T(xy) E(a) ."},
        {"<a><![CDATA[]]]]><![CDATA[>]]></a>", "S(a) T(]]>) E(a) ."},
        {"<a>&lt;b&gt;&amp;&apos;&quot;</a>", "S(a) T(<b>&'\") E(a) ."},
        {"<a>&amp;lt;&#38;lt;</a>", "S(a) T(&lt;&lt;) E(a) ."},
        {"<a>x<b/>y<b>z</b></a>", "S(a) T(x) S(b) E(b) T(y) S(b) T(z) E(b) E(a) ."},
        {"<?xml version=\"1.0\"?><!DOCTYPE a><!--c--><?p i?><a/><!--d-->", "S(a) E(a) ."},
        {"<?xml version='1.1' encoding='UTF-8' standalone='yes' ?><a/>", "S(a) E(a) ."},
        {"<a>]] ]></a>", "S(a) T(]] ]>) E(a) ."},
        {"<a>]]<![CDATA[]]>&gt;</a>", "S(a) T(]]>) E(a) ."},
        {"<\xC3\xA9 \xC3\xB1=\"\xF0\x9F\x98\x80\"/>", "S(\\u{E9} \\u{F1}=\\u{1F600}) E(\\u{E9}) ."},
        {"<a.b-c_1\xC2\xB7/>", "S(a.b-c_1\\u{B7}) E(a.b-c_1\\u{B7}) ."},
    });
}

TEST(ParserEvents, AttributeValuesTurnWhiteSpaceIntoBlanksAndKeepReferences) {
    expectRows({
        {"<a x=\"1\t2\n3\r\n4\r5\"/>", "S(a x=1 2 3 4 5) E(a) ."},
        {"<a x=\"  1  2  \"/>", "S(a x=  1  2  ) E(a) ."},
        {"<a x=\"&#9;&#10;&#13;&#x20;\"/>", "S(a x=\\t\\n\\r ) E(a) ."},
        {"<a x=\"&lt;&amp;&quot;'&apos;&gt;>\"/>", "S(a x=<&\"''>>) E(a) ."},
        {"<a x=\"\" y=''/>", "S(a x= y=) E(a) ."},
        {"<a x=\"&#60;&#38;lt;\"/>", "S(a x=<&lt;) E(a) ."},
    });
}

TEST(ParserEvents, TokensComeAsTheyAreWritten) {
    expectRows(
        {
            {"<?xml version=\"1.0\"?>\n<!--c--><?p i ?>\n<a x=\"1\">t&amp;&#65;u<![CDATA[d]]></a>\n"
             "<!--e-->",
             "W(\\n) K(c) P(p i ) W(\\n) S(a x=1) T(t) R(amp) R(#A) T(u) C(d) E(a) W(\\n) K(e) ."},
            {"<?p  i?\?><a/>", "P(p  i?) S(a) E(a) ."},
            {"<?p\ti\r\n?><a/>", "P(p\\ti\\n) S(a) E(a) ."},
            {"<?p <a>&x;</a>?><a/>", "P(p <a>&x;</a>) S(a) E(a) ."},
            {"<?xmlish x?><a/>", "P(xmlish x) S(a) E(a) ."},
            {"<!---->\r<a/>", "K() W(\\n) S(a) E(a) ."},
            {"<!-- - <a> &b; --><a/>", "K( - <a> &b; ) S(a) E(a) ."},
            {"<a><![CDATA[]]]]><![CDATA[>]]]></a>", "S(a) C(]]) C(>]) E(a) ."},
            {"<a>&undefined;</a>", "S(a) R(undefined) E(a) ."},
            {"<!DOCTYPE a [ <!ENTITY e 'v'> ] ><a>&e;</a>", "D S(a) R(e) E(a) ."},
        },
        {.tokens = true});
}

TEST(ParserEvents, DepthAndNamesFollowTheElements) {
    Opened<std::stringbuf> parser("<a><p:b xmlns:p='u'>x<c/></p:b></a>");
    EXPECT_EQ(parser->getEventType(), RyXmlParser::START_DOCUMENT);
    EXPECT_EQ(parser->getDepth(), 0);
    std::string seen;
    while (parser->next() != RyXmlParser::END_DOCUMENT) {
        seen += std::to_string(parser->getEventType()) + ":" + std::to_string(parser->getDepth());
        if (parser->getEventType() != RyXmlParser::TEXT)
            seen += toUtf8(parser->getPrefix().toString()) + "," +
                    toUtf8(parser->getName().toString()) + "," +
                    toUtf8(parser->getNamespace().toString());
        seen += " ";
    }
    EXPECT_EQ(seen, "2:1,a, 2:2p,b,u 4:2 2:3,c, 3:3,c, 3:2p,b,u 3:1,a, ");
    EXPECT_EQ(parser->getDepth(), 0);
}

TEST(ParserEvents, EndRepeats) {
    Opened<std::stringbuf> parser("<a/>");
    while (parser->next() != RyXmlParser::END_DOCUMENT) continue;
    EXPECT_EQ(parser->next(), RyXmlParser::END_DOCUMENT);
    EXPECT_EQ(parser->nextToken(), RyXmlParser::END_DOCUMENT);
}

TEST(ParserEvents, WhiteSpaceAndEmptyTagsAreAskedOnlyWhereTheyMeanSomething) {
    const struct {
        const char* input;
        const char* expected;  // per token: white space, empty tag; "-" for error 2059
    } rows[] = {
        {"<a/>", "-1 -- --"},
        {"\n<a/>", "1- -1 -- --"},
        {"<a> \t\n&#13;x</a>", "-0 1- -- 0- -- --"},
        {"<a><![CDATA[]]><![CDATA[ ]]><![CDATA[.]]></a>", "-0 1- 1- 0- -- --"},
        {"<a>\xC2\xA0</a>", "-0 0- -- --"},
        {"<!--c--><?p ?><!DOCTYPE a><a/>", "-- -- -- -1 -- --"},
    };
    for (const auto& row : rows) {
        Opened<std::stringbuf> parser(row.input);
        std::string seen;
        do {
            parser->nextToken();
            std::string blank = "-", empty = "-";
            const RyError first = errorOf([&] { blank = std::to_string(parser->isWhitespace()); });
            const RyError second =
                errorOf([&] { empty = std::to_string(parser->isEmptyElementTag()); });
            EXPECT_EQ(first.getErrorCode(), blank == "-" ? 2059 : 0) << row.input;
            EXPECT_EQ(second.getErrorCode(), empty == "-" ? 2059 : 0) << row.input;
            if (!seen.empty()) seen += " ";
            seen += blank;
            seen += empty;
        } while (parser->getEventType() != RyXmlParser::END_DOCUMENT);
        EXPECT_EQ(seen, row.expected) << row.input;
    }
}

TEST(ParserEvents, MisuseNamesItsPlace) {
    Opened<std::stringbuf> parser("<a x='1'>t</a>");
    const auto expectMisuse = [&](const char* place, int code, const std::function<void()>& call) {
        const RyError error = errorOf(call);
        EXPECT_EQ(error.getErrorCode(), code) << place;
        EXPECT_EQ(toUtf8(error.getSource()), "RynCommon::XmlParserImpl::"s + place);
        EXPECT_EQ(toUtf8(error.getRawMessage()),
                  code == 2059 ? "SYSTEM ERROR: Cannot set a value on node type."
                               : "SYSTEM ERROR: RyErrorCodeRYNLIB");
    };
    expectMisuse("isWhitespace", 2059, [&] { parser->isWhitespace(); });
    expectMisuse("isEmptyElementTag", 2059, [&] { parser->isEmptyElementTag(); });
    parser->next();
    ASSERT_EQ(parser->getAttributeCount(), 1);
    for (const int index : {-1, 1, 0x7FFFFFFF}) {
        expectMisuse("getAttributeNamespace", 2052, [&] { parser->getAttributeNamespace(index); });
        expectMisuse("getAttributeName", 2052, [&] { parser->getAttributeName(index); });
        expectMisuse("getAttributePrefix", 2052, [&] { parser->getAttributePrefix(index); });
        expectMisuse("getAttributeValue", 2052, [&] { parser->getAttributeValue(index); });
    }
    parser->next();
    EXPECT_EQ(parser->getAttributeCount(), 0);
    expectMisuse("getAttributeName", 2052, [&] { parser->getAttributeName(0); });
}

TEST(ParserEvents, AttributesAreFoundByNamespaceAndName) {
    Opened<std::stringbuf> parser("<a x='1' p:x='2' xmlns:p='u' xml:lang='de'/>");
    parser->next();
    const struct {
        const char *ns, *name, *value;
    } rows[] = {
        {"", "x", "1"},
        {"u", "x", "2"},
        {"http://www.w3.org/XML/1998/namespace", "lang", "de"},
        {"http://www.w3.org/2000/xmlns/", "p", "u"},
        {"", "y", ""},
        {"v", "x", ""},
        {"", "p:x", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(
            toUtf8(parser->getAttributeValue(RyName(fromUtf8(row.ns)), RyName(fromUtf8(row.name)))),
            row.value)
            << row.ns << " " << row.name;
}

TEST(ParserEvents, InputIsCheckedAtTheFirstEvent) {
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    const std::string place = "RynCommon::XmlParserImpl::checkStream";
    const auto check = [&](const char* what, int code, const char* message) {
        const RyError error = errorOf([&] { parser->next(); });
        EXPECT_EQ(error.getErrorCode(), code) << what;
        EXPECT_EQ(toUtf8(error.getRawMessage()), message) << what;
        EXPECT_EQ(toUtf8(error.getSource()), place) << what;
    };
    check("no input", 2059, "SYSTEM ERROR: Cannot set a value on node type.");
    const struct {
        const char* what;
        std::ios_base::iostate state;
        int code;
        const char* message;
    } rows[] = {
        {"failed at its end", std::ios_base::eofbit | std::ios_base::failbit, 4100,
         "Unexpected end of input stream."},
        {"failed", std::ios_base::failbit, 4102, "Input stream error."},
        {"bad", std::ios_base::badbit, 4102, "Input stream error."},
        {"empty", std::ios_base::goodbit, 4100, "Unexpected end of input stream."},
    };
    for (const auto& row : rows) {
        std::istringstream in(row.state == std::ios_base::goodbit ? "" : "<a/>");
        in.setstate(row.state);
        parser->setInput(in, UnicodeString(), UnicodeString());
        check(row.what, row.code, row.message);
    }
}

TEST(ParserEvents, NewInputForgetsAllButFeatures) {
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    for (int i = -1; i < 8; ++i) {
        const auto feature = static_cast<RyXmlParser::Feature>(i);
        EXPECT_FALSE(parser->getFeature(feature)) << i;
        parser->setFeature(feature, true);
        EXPECT_EQ(parser->getFeature(feature), i >= 0 && i <= 5) << i;
    }
    std::istringstream first("<!DOCTYPE a [<!ENTITY e 'v'>]><a xmlns:p='u'><b>&e;");
    parser->setInput(first, UnicodeString(), UnicodeString());
    while (parser->next() != RyXmlParser::TEXT) continue;
    std::istringstream second("<?xml version='1.0'?><!DOCTYPE c><c>&e;</c>");
    parser->setInput(second, UnicodeString(), UnicodeString());
    EXPECT_EQ(parser->getEventType(), RyXmlParser::START_DOCUMENT);
    EXPECT_EQ(parser->getDepth(), 0);
    EXPECT_EQ(parser->getLineNumber(), -1);
    EXPECT_EQ(parser->getColumnNumber(), -1);
    EXPECT_EQ(parser->next(), RyXmlParser::START_TAG);
    EXPECT_EQ(dumpEvent(*parser), "S(c)");
    EXPECT_TRUE(parser->getNamespace(RyName(fromUtf8("p"))).isEmpty());
    EXPECT_EQ(errorOf([&] { parser->next(); }).getErrorCode(), 6174);
    EXPECT_TRUE(parser->getFeature(RyXmlParser::NO_EXTERNAL_DTD));
}

TEST(ParserEvents, ReadsByUri) {
    const std::string uri = "file://" + testing::TempDir() + "parser events %C3%A9.xml";
    std::ofstream(testing::TempDir() + "parser events \xC3\xA9.xml") << "<a>\n <b/>\n</a>";
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    parser->setInput(fromUtf8(uri), UnicodeString(), UnicodeString());
    do {
        parser->next();
    } while (dumpEvent(*parser) != "S(b)");
    const std::string base = toUtf8(parser->getBaseUri());
    EXPECT_TRUE(base.starts_with("file:///") && base.ends_with("/")) << base;
    const std::string position = toUtf8(parser->getPositionDescription());
    EXPECT_TRUE(position.starts_with("START_TAG, 'file:///") &&
                position.ends_with("parser%20events%20%C3%A9.xml', Line 2, Col 5."))
        << position;

    parser->setInput(fromUtf8(uri), UnicodeString(), fromUtf8("http://b.example/x/"));
    EXPECT_EQ(toUtf8(parser->getBaseUri()), "http://b.example/x/");

    const RyError error = errorOf([&] {
        parser->setInput(fromUtf8(testing::TempDir() + "not-there.xml"), UnicodeString(),
                         UnicodeString());
    });
    EXPECT_EQ(error.getErrorCode(), 4099);
    EXPECT_EQ(toUtf8(error.getSource()), "RynCommon::XmlParserImpl::setInput");
    const std::string message = toUtf8(error.getRawMessage());
    EXPECT_TRUE(message.starts_with("Cannot open file: ") && message.ends_with("not-there.xml"))
        << message;
}

TEST(ParserEvents, TypeIsKnown) {
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    EXPECT_EQ(toUtf8(parser->getTypeName()), "XmlParserImpl");
    EXPECT_TRUE(parser->isA(parser->getTypeID()));
    EXPECT_TRUE(parser->isA(RyXmlParser::getStaticTypeID()));
    EXPECT_FALSE(parser->isA(0x12345678u));
    EXPECT_EQ(toUtf8(parser->getPositionDescription()), "START_DOCUMENT.");
}

}  // namespace
