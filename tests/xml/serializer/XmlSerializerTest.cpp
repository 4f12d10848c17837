// The serializer: calls in, bytes out, and errors.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/xml/serializer/SerializerScript.h"

namespace RynCommon {
namespace {

TEST(XmlSerializerTest, XmlDeclaration) {
    struct Row {
        const char16_t *output, *argument, *standalone, *generator;
        const char *expected, *conformant;
    };
    const Row rows[] = {
        {u"", u"", u"", u"", "<?xml version=\"1.0\"?>", "<?xml version=\"1.0\"?>"},
        {u"", u"utf-8 ", u"", u"", "<?xml version=\"1.0\" encoding=\"\xC2\xAD\"?>",
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"},
        {u"UTF-8", u"", u"yes", u"",
         "<?xml version=\"1.0\" encoding=\"\xC2\xAD\" standalone=\"yes\"?>",
         "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"},
        {u"UTF-8", u"ISO-8859-1", u"", u"", "<?xml version=\"1.0\"?>", "<?xml version=\"1.0\"?>"},
        {u"", u" shift_jis", u"", u"", "<?xml version=\"1.0\" encoding=\"&#139;\"?>",
         "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>"},
        {u"shift-jis", u"", u"", u"", "<?xml version=\"1.0\" encoding=\"\xC2\x8B\"?>",
         "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>"},
        {u"", u"", u"no", u"a < \u00E9",
         "<?xml version=\"1.0\" standalone=\"no\"?><!-- a < \xC3\xA9 -->",
         "<?xml version=\"1.0\" standalone=\"no\"?><!-- a < \xC3\xA9 -->"},
    };
    for (const Row& row : rows) {
        for (const bool conformant : {false, true}) {
            std::ostringstream out;
            const RyPtr<RyXmlSerializer> serializer = makeSerializer(conformant);
            serializer->setGenerator(row.generator);
            serializer->setOutput(&out, row.output);
            serializer->startDocument(row.argument, row.standalone);
            // Outside of all elements nothing waits for a flush.
            EXPECT_EQ(out.str(), conformant ? row.conformant : row.expected);
        }
    }
    EXPECT_TRUE(
        RyPtr<RyXmlSerializer>(new XmlSerializerImpl)->getGenerator().startsWith(u"RynCommon"));
}

TEST(XmlSerializerTest, ContentAndEscapes) {
    const auto inRoot = [](Script script) -> Script {
        return [script](RyXmlSerializer& s) {
            s.startTag(NONE, NONE, name(u"r"), false);
            script(s);
        };
    };
    const auto text = [&](const UnicodeString& value) {
        return inRoot([value](RyXmlSerializer& s) { s.text(value); });
    };
    const auto value = [](const UnicodeString& v) -> Script {
        return [v](RyXmlSerializer& s) {
            s.startTag(NONE, NONE, name(u"r"), false);
            s.attribute(NONE, A, v);
        };
    };
    const UnicodeString controls(u"\u0000\u0001\u0008\u000B\u000C\u000E\u001F.", 8);
    expectAll(
        {
            {"text", text(u"a<b>&\"'"), "<r>a&lt;b&gt;&amp;\"'"},
            {"controls vanish", text(controls), "<r>."},
            {"white space stays", text(u"\t\n\r "), "<r>\t\n\r "},
            {"C1 and line ends stay", text(u"\u007F\u0085\u2028"), "<r>\x7F\xC2\x85\xE2\x80\xA8"},
            {"lengths of UTF-8", text(u"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
             "<r>\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
            {"a pair", text(u"\U0001F600"), "<r>\xF0\x9F\x98\x80"},
            {"lone surrogates", text(UnicodeString(u"\xD83D.\xDE00\xD83D")),
             "<r>\xED\xA0\xBD.\xED\xB8\x80\xED\xA0\xBD"},
            {"empty text closes the tag", text(u""), "<r>"},
            {"stops within and across groups of eight",
             text(u"0123456<01234567&012345678>0123456789abcdef\u00E90123456789"),
             "<r>0123456&lt;01234567&amp;012345678&gt;0123456789abcdef\xC3\xA9"
             "0123456789"},
            {"attribute", value(u"<&>\"'\t\n\r\u0001"), "<r a=\"&lt;&amp;&gt;&quot;'\t\n\r\">"},
            {"CDATA", inRoot([](auto& s) { s.cdsect(u"<&]]>\u0002"); }), "<r><![CDATA[<&]]>]]>"},
            {"reference", inRoot([](auto& s) { s.entityRef(u"eacute"); }), "<r>&eacute;"},
            {"PI", inRoot([](auto& s) { s.processingInstruction(u"t a<b"); }), "<r><?t a<b?>"},
            {"comment", inRoot([](auto& s) { s.comment(u"a--&"); }), "<r><!--a--&-->"},
            {"white space", inRoot([](auto& s) { s.ignorableWhitespace(u"\n x<"); }), "<r>\n x<"},
            {"part of a buffer", inRoot([](auto& s) { s.text(u"abcdef", 2, 3); }), "<r>cde"},
            {"no buffer", inRoot([](auto& s) { s.text(nullptr, 0, 3); }), "<r>"},
            {"names are not escaped",
             [](auto& s) { s.startTag(NONE, NONE, name(u"a<&\u00E9"), false); }, "<a<&\xC3\xA9>"},
        },
        u"UTF-8");
    expectAll(
        {
            {"mapped", text(u"\u65E5\u672C\uFF71\\~\u2460"), "<r>\x93\xFA\x96\x7B\xB1\\~\x87\x40"},
            {"missing", text(u"\u00E9\u301C\u00A5"), "<r>&#233;&#12316;&#165;"},
            {"a pair is one reference", text(u"\U0001F600"), "<r>&#128512;"},
            {"lone surrogate", text(UnicodeString(u"\xD83D.")), "<r>&#55357;."},
            {"everywhere", inRoot([](auto& s) { s.comment(u"\u00E9"); }), "<r><!--&#233;-->"},
            {"value", value(u"\u65E5\u00E9\""), "<r a=\"\x93\xFA&#233;&quot;\">"},
        },
        u"SHIFT_JIS");
    expectAll({{"only that spelling", text(u"\u65E5"), "<r>\xE6\x97\xA5"}}, u"SHIFT-JIS");
}

TEST(XmlSerializerTest, WrongOrderOfCalls) {
    struct Row {
        const char* what;
        Script before, call;
        int code;
        const char* message;
        const char16_t* source;
    };
    const Script nothing = [](auto&) {};
    const Script begin = [](auto& s) { s.startDocument(u"", u""); };
    const Script open = [](auto& s) { s.startTag(NS1, P, A, false); };
    const Script attribute = [](auto& s) { s.attribute(NONE, A, u"1"); };
    const Script docdecl = [](auto& s) { s.docdecl(u"a"); };
    const Script text = [](auto& s) {
        s.startTag(NS1, P, A, false);
        s.text(u"x");
    };
    const char* const misplaced =
        "SYSTEM ERROR: startDocument() must be called just after setOutput().";
    const char* const attr = "SYSTEM ERROR: attribute() must be called just after startTag().";
    const Row rows[] = {
        {"second startDocument", begin, begin, 2060, misplaced,
         u"RynCommon::XmlSerializerImpl::startDocumen"},
        {"startDocument in an element", open, begin, 2060, misplaced,
         u"RynCommon::XmlSerializerImpl::startDocumen"},
        {"attribute first", nothing, attribute, 2061, attr,
         u"RynCommon::XmlSerializerImpl::attributeSub"},
        {"attribute after text", text, attribute, 2061, attr,
         u"RynCommon::XmlSerializerImpl::attributeSub"},
        {"attribute after setPrefix",
         [](auto& s) {
             s.startTag(NONE, NONE, A, false);
             s.setPrefix(P, NS1);
         },
         attribute, 2061, attr, u"RynCommon::XmlSerializerImpl::attributeSub"},
        {"attribute after flush",
         [](auto& s) {
             s.startTag(NONE, NONE, A, false);
             s.flush();
         },
         attribute, 2061, attr, u"RynCommon::XmlSerializerImpl::attributeSub"},
        {"nothing open", begin, [](auto& s) { s.endTag(NONE, A); }, 2062,
         "SYSTEM ERROR: Unexpected endTag().", u"RynCommon::XmlSerializerImpl::endTagt"},
        {"other name", open, [](auto& s) { s.endTag(NS1, B); }, 2063,
         "SYSTEM ERROR: End tag 'p:b' does not match the start tag 'p:a'.",
         u"RynCommon::XmlSerializerImpl::endTagt"},
        {"other namespace", text, [](auto& s) { s.endTag(NS2, A); }, 2063,
         "SYSTEM ERROR: End tag '{urn:2}:a' does not match the start tag 'p:a'.",
         u"RynCommon::XmlSerializerImpl::endTagt"},
        {"no namespace", open, [](auto& s) { s.endTag(NONE, A); }, 2063,
         "SYSTEM ERROR: End tag 'a' does not match the start tag 'p:a'.",
         u"RynCommon::XmlSerializerImpl::endTagt"},
        {"docdecl first", nothing, docdecl, 2064, "SYSTEM ERROR: Unexpected docdecl().", u""},
        {"docdecl in an element", open, docdecl, 2064, "SYSTEM ERROR: Unexpected docdecl().", u""},
    };
    for (const Row& row : rows) {
        std::ostringstream out, same;
        const RyPtr<RyXmlSerializer> s = makeSerializer(), control = makeSerializer();
        s->setOutput(&out, UnicodeString());
        control->setOutput(&same, UnicodeString());
        row.before(*s);
        row.before(*control);
        const Failure failure = failureOf([&] { row.call(*s); });
        EXPECT_EQ(failure.code, row.code) << row.what;
        EXPECT_EQ(failure.message, row.message) << row.what;
        EXPECT_EQ(failure.source, UnicodeString(row.source)) << row.what;
        s->endDocument();
        control->endDocument();
        EXPECT_EQ(out.str(), same.str()) << row.what;
    }
}

TEST(XmlSerializerTest, Docdecl) {
    expectAll(
        {
            {"blank added",
             [](auto& s) {
                 s.startDocument(u"", u"");
                 s.comment(u"c");
                 s.docdecl(u"a [<!ENTITY b '&#38;'>]");
             },
             "<?xml version=\"1.0\"?><!--c--><!DOCTYPE a [<!ENTITY b '&#38;'>]>"},
            {"its own white space",
             [](auto& s) {
                 s.startDocument(u"", u"");
                 s.docdecl(u"\na");
             },
             "<?xml version=\"1.0\"?><!DOCTYPE\na>"},
        },
        u"");
}

// Takes so many bytes and fails from then on.
class FullBuffer : public std::streambuf {
public:
    explicit FullBuffer(int room) : room_(room) {}

protected:
    int overflow(int c) override { return --room_ < 0 ? traits_type::eof() : c; }

private:
    int room_;
};

TEST(XmlSerializerTest, OutputErrors) {
    const std::vector<std::pair<const char*, Script>> calls = {
        {"startDocument", [](auto& s) { s.startDocument(u"", u""); }},
        {"docdecl", [](auto& s) { s.docdecl(u"a"); }},
        {"setPrefix", [](auto& s) { s.setPrefix(P, NS1); }},
        {"startTag", [](auto& s) { s.startTag(NONE, NONE, A, false); }},
        {"attribute", [](auto& s) { s.attribute(NONE, A, u""); }},
        {"text", [](auto& s) { s.text(u""); }},
        {"cdsect", [](auto& s) { s.cdsect(u""); }},
        {"entityRef", [](auto& s) { s.entityRef(u"a"); }},
        {"processingInstruction", [](auto& s) { s.processingInstruction(u"a"); }},
        {"comment", [](auto& s) { s.comment(u""); }},
        {"ignorableWhitespace", [](auto& s) { s.ignorableWhitespace(u""); }},
        {"endTag", [](auto& s) { s.endTag(NONE, A); }},
        {"endDocument", [](auto& s) { s.endDocument(); }},
        {"flush", [](auto& s) { s.flush(); }},
    };
    for (const auto& [what, call] : calls) {
        const RyPtr<RyXmlSerializer> s = makeSerializer();
        EXPECT_EQ(failureOf([&, &run = call] { run(*s); }).code, 4101) << what;
        std::ostringstream out;
        s->setOutput(&out, UnicodeString());
        out.setstate(std::ios::failbit);
        const Failure failure = failureOf([&, &run = call] { run(*s); });
        EXPECT_EQ(failure.code, 4103) << what;
        EXPECT_EQ(failure.source, u"RynCommon::XmlSerializerImpl::checkStream") << what;
        out.clear();
        s->endDocument();
        EXPECT_EQ(out.str(), "") << what;
        EXPECT_EQ(failureOf([&, &run = call] { run(*s); }).code, 4101) << what;
    }
}

TEST(XmlSerializerTest, AFullOutputIsReported) {
    for (const bool throwing : {false, true}) {
        FullBuffer buffer(100);
        std::ostream out(&buffer);
        if (throwing) out.exceptions(std::ios::badbit | std::ios::failbit);
        const RyPtr<RyXmlSerializer> s = makeSerializer();
        s->setOutput(&out, UnicodeString());
        s->startTag(NONE, NONE, A, false);
        s->text(UnicodeString(200, u'x', 200));
        EXPECT_EQ(failureOf([&] { s->endDocument(); }).code, 4103) << throwing;
        EXPECT_EQ(failureOf([&] { s->text(u""); }).code, 4101) << throwing;
    }
}

TEST(XmlSerializerTest, FilesAreOpenedAndClosed) {
    const std::string path = testing::TempDir() + "XmlSerializerTest.xml";
    const UnicodeString uri = UnicodeString::fromUTF8(path);
    const RyPtr<RyXmlSerializer> s = makeSerializer();
    s->setOutput(uri, UnicodeString());
    s->startTag(NONE, NONE, A, false);
    s->endDocument();
    std::stringstream content;
    content << std::ifstream(path).rdbuf();
    EXPECT_EQ(content.str(), "<a/>");
    std::remove(path.c_str());

    const Failure failure =
        failureOf([&] { s->setOutput(u"/no/such/folder/a.xml", UnicodeString()); });
    EXPECT_EQ(failure.code, 4099);
    EXPECT_EQ(failure.message, "Cannot open file: /no/such/folder/a.xml");
    EXPECT_EQ(failure.source, u"RynCommon::XmlSerializerImpl::setOutput");
    EXPECT_EQ(failureOf([&] { s->text(u""); }).code, 4101);
}

TEST(XmlSerializerTest, SetOutputStartsOver) {
    std::ostringstream first, second;
    const RyPtr<RyXmlSerializer> s = makeSerializer();
    s->setOutput(&first, UnicodeString());
    s->startTag(NS1, P, A, false);
    s->text(u"x");
    s->setOutput(&second, UnicodeString());
    EXPECT_EQ(first.str(), "<p:a xmlns:p=\"urn:1\">x");
    EXPECT_EQ(s->getDepth(), 0);
    s->startTag(NS1, P, A, false);
    s->endDocument();
    EXPECT_EQ(second.str(), "<p:a xmlns:p=\"urn:1\"/>");
}

TEST(XmlSerializerTest, LongRunsAndDeepTreesKeepTheirBytes) {
    // Longer than the buffer, with a pair at every possible cut.
    std::string expected = "<a>";
    UnicodeString text;
    for (int i = 0; i < 30000; ++i) {
        text.append(UChar32{0x1F600});
        if (i % 7 == 0) text.append(u'<');
        expected += i % 7 == 0 ? "\xF0\x9F\x98\x80&lt;" : "\xF0\x9F\x98\x80";
    }
    EXPECT_EQ(written(
                  [&](auto& s) {
                      s.startTag(NONE, NONE, A, false);
                      s.text(text);
                  },
                  u""),
              expected);

    constexpr int DEPTH = 100000;
    std::ostringstream out;
    const RyPtr<RyXmlSerializer> s = makeSerializer();
    s->setOutput(&out, UnicodeString());
    std::string deep;
    for (int i = 0; i < DEPTH; ++i) {
        s->startTag(i % 2 == 0 ? NS1 : NS2, P, A, false);
        EXPECT_EQ(s->getPrefix(i % 2 == 0 ? NS2 : NS1, false), NONE);
        deep += i % 2 == 0 ? "<p:a xmlns:p=\"urn:1\"" : "<p:a xmlns:p=\"urn:2\"";
        deep += i + 1 < DEPTH ? ">" : "/>";
    }
    for (int i = 1; i < DEPTH; ++i) deep += "</p:a>";
    s->endDocument();
    EXPECT_EQ(out.str() == deep, true);
}

TEST(XmlSerializerTest, TypeIdentity) {
    const RyPtr<RyXmlSerializer> s(new XmlSerializerImpl);
    for (const unsigned int id : {0x5695E1FBu, 0xB2E73DE2u, 0x90AF0240u, 0xA4EBD8C4u})
        EXPECT_TRUE(s->isA(id)) << id;
    EXPECT_FALSE(s->isA(0x3C8E51D7u));
    EXPECT_EQ(s->getTypeID(), 0x5695E1FBu);
    EXPECT_EQ(s->getTypeName(), u"XmlSerializerImpl");
}

}  // namespace
}  // namespace RynCommon
