// Output that any XML reader takes.
#include <gtest/gtest.h>

#include <sstream>
#include <utility>
#include <vector>

#include "tests/xml/serializer/SerializerScript.h"

namespace RynCommon {
namespace {

TEST(ConformantSerializerTest, Output) {
    const RyName xmlns = RN_xmlns, xmlnsNs = RN_NS_xmlns;
    expectAll(
        {
            {"white space in values",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.attribute(NONE, B, u"\t\n\r\u0085\u2028\"");
             },
             "<a b=\"&#9;&#10;&#13;&#133;&#8232;&quot;\">"},
            {"line ends in text",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.text(u"\t\n\r\u0085\u2028\u007F");
             },
             "<a>\t\n&#13;&#133;&#8232;\x7F"},
            {"CDATA",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.cdsect(u"a<b");
             },
             "<a><![CDATA[a<b]]>"},
            {"what CDATA cannot hold",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.cdsect(u"<]]>\r");
             },
             "<a>&lt;]]&gt;&#13;"},
            {"PI without data", [](auto& s) { s.processingInstruction(u"t"); }, "<?t ?>"},
            {"PI with data", [](auto& s) { s.processingInstruction(u"t a ? > b"); },
             "<?t a ? > b?>"},
            {"generated prefixes, past those in use",
             [](auto& s) {
                 s.setPrefix(name(u"ns2"), NS2);
                 s.startTag(NS1, NONE, A, true);
                 s.attribute(name(u"urn:3"), B, u"1");
                 s.startTag(name(u"urn:4"), NONE, B, true);
                 s.endTag(name(u"urn:4"), B);
                 s.startTag(name(u"urn:5"), NONE, B, true);
             },
             "<ns1:a ns3:b=\"1\" xmlns:ns2=\"urn:2\" xmlns:ns1=\"urn:1\" xmlns:ns3=\"urn:3\">"
             "<ns4:b xmlns:ns4=\"urn:4\"/><ns4:b xmlns:ns4=\"urn:5\">"},
            {"an element without a namespace stays without",
             [=](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.attribute(xmlnsNs, xmlns, xmlns, u"urn:1");
             },
             "<a xmlns:ns1=\"urn:1\">"},
            {"xml:lang as one name",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.attribute(NONE, name(u"xml:lang"), u"de");
             },
             "<a xml:lang=\"de\">"},
        },
        u"UTF-8", true);
    expectAll({{"CDATA in Shift_JIS",
                [](auto& s) {
                    s.startTag(NONE, NONE, A, false);
                    s.cdsect(u"\u00E9<");
                },
                "<a>&#233;&lt;"}},
              u"SHIFT_JIS", true);
}

TEST(ConformantSerializerTest, Refusals) {
    const auto open = [](auto& s) { s.startTag(NONE, NONE, A, false); };
    const auto named = [](const char16_t* local) -> Script {
        return [local](auto& s) { s.startTag(NONE, NONE, name(local), false); };
    };
    const std::vector<std::pair<const char*, Script>> calls = {
        {"control in text", [](auto& s) { s.text(u"a\u0001"); }},
        {"lone high surrogate", [](auto& s) { s.text(UnicodeString(u"a\xD83D")); }},
        {"lone low surrogate", [](auto& s) { s.text(UnicodeString(u"\xDE00")); }},
        {"U+FFFE", [](auto& s) { s.text(u"\uFFFE"); }},
        {"control in a value", [](auto& s) { s.attribute(NONE, B, u"\u0002"); }},
        {"control in CDATA", [](auto& s) { s.cdsect(u"\u0002"); }},
        {"hyphens in a comment", [](auto& s) { s.comment(u"a--b"); }},
        {"hyphen at its end", [](auto& s) { s.comment(u"a-"); }},
        {"end of PI inside", [](auto& s) { s.processingInstruction(u"t a?>b"); }},
        {"PI target xml", [](auto& s) { s.processingInstruction(u"xMl a"); }},
        {"PI without target", [](auto& s) { s.processingInstruction(u" a"); }},
        {"entity name", [](auto& s) { s.entityRef(u"a b"); }},
        {"white space with letters", [](auto& s) { s.ignorableWhitespace(u" x"); }},
        {"empty element name", named(u"")},
        {"blank in an element name", named(u"a b")},
        {"digit first", named(u"1a")},
        {"colon in an element name", named(u"a:b")},
        {"attribute name", [](auto& s) { s.attribute(NONE, name(u"a="), u""); }},
        {"prefix without namespace", [](auto& s) { s.startTag(NONE, P, B, false); }},
        {"attribute prefix without namespace", [](auto& s) { s.attribute(NONE, P, B, u""); }},
        {"bad prefix", [](auto& s) { s.setPrefix(name(u"a b"), NS1); }},
        {"xml bound elsewhere", [](auto& s) { s.setPrefix(RN_xml, NS1); }},
        {"the xmlns namespace", [](auto& s) { s.setPrefix(P, RN_NS_xmlns); }},
        {"prefix unbound", [](auto& s) { s.attribute(RN_NS_xmlns, RN_xmlns, P, u""); }},
        {"the same attribute twice",
         [](auto& s) {
             s.attribute(NS1, P, name(u"once"), u"");
             s.attribute(NS1, Q, name(u"once"), u"");
         }},
    };
    for (const auto& row : calls) {
        const char* const what = row.first;
        const Script& call = row.second;
        std::ostringstream out;
        const RyPtr<RyXmlSerializer> s = makeSerializer(true);
        s->setOutput(&out, UnicodeString());
        open(*s);
        EXPECT_EQ(failureOf([&] { call(*s); }).code, 2065) << what;
        s->endDocument();
        EXPECT_TRUE(out.str() == "<a/>" || out.str() == "<a p:once=\"\" xmlns:p=\"urn:1\"/>")
            << what << ": " << out.str();
        // Off, the same call passes.
        out.str({});
        s->setConformant(false);
        s->setOutput(&out, UnicodeString());
        open(*s);
        EXPECT_EQ(failureOf([&] { call(*s); }).code, 0) << what;
    }
}

}  // namespace
}  // namespace RynCommon
