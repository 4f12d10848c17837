// Output that any XML reader takes.
#include <gtest/gtest.h>

#include <sstream>
#include <utility>
#include <vector>

#include "tests/xml/serializer/SerializerScript.h"

namespace RynCommon {
namespace {

TEST(ConformantSerializerTest, Output) {
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
            {"CDATA", calls("<a [a<b"), "<a><![CDATA[a<b]]>"},
            {"what CDATA cannot hold",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.cdsect(u"<]]>\r");
             },
             "<a>&lt;]]&gt;&#13;"},
            {"PI without data", calls("?t"), "<?t ?>"},
            {"PI with data", [](auto& s) { s.processingInstruction(u"t a ? > b"); },
             "<?t a ? > b?>"},
            {"generated prefixes, past those in use", calls("+ns2@2 <*a@1 @b@3=1 <*b@4 /b@4 <*b@5"),
             "<ns1:a ns3:b=\"1\" xmlns:ns2=\"urn:2\" xmlns:ns1=\"urn:1\" xmlns:ns3=\"urn:3\">"
             "<ns4:b xmlns:ns4=\"urn:4\"/><ns4:b xmlns:ns4=\"urn:5\">"},
            {"an element without a namespace stays without", calls("<a @xmlns:xmlns@xmlns=urn:1"),
             "<a xmlns:ns1=\"urn:1\">"},
            {"xml:lang as one name",
             [](auto& s) {
                 s.startTag(NONE, NONE, A, false);
                 s.attribute(NONE, name(u"xml:lang"), u"de");
             },
             "<a xml:lang=\"de\">"},
        },
        u"UTF-8", true);
    expectAll({{"CDATA in Shift_JIS", calls("<a [\u00E9<"), "<a>&#233;&lt;"}}, u"SHIFT_JIS", true);
}

TEST(ConformantSerializerTest, Refusals) {
    const Script open = calls("<a");
    const std::vector<std::pair<const char*, Script>> refused = {
        {"control in text", calls("a\x01")},
        {"lone high surrogate", [](auto& s) { s.text(UnicodeString(u"a\xD83D")); }},
        {"lone low surrogate", [](auto& s) { s.text(UnicodeString(u"\xDE00")); }},
        {"U+FFFE", calls("\uFFFE")},
        {"control in a value", calls("@b=\x02")},
        {"control in CDATA", calls("[\x02")},
        {"hyphens in a comment", calls("#a--b")},
        {"hyphen at its end", calls("#a-")},
        {"end of PI inside", [](auto& s) { s.processingInstruction(u"t a?>b"); }},
        {"PI target xml", [](auto& s) { s.processingInstruction(u"xMl a"); }},
        {"PI without target", [](auto& s) { s.processingInstruction(u" a"); }},
        {"entity name", calls("&a!")},
        {"white space with letters", [](auto& s) { s.ignorableWhitespace(u" x"); }},
        {"empty element name", calls("<:")},
        {"bad element name", calls("<a!")},
        {"digit first", calls("<1a")},
        {"colon in an element name", calls("<:a:b")},
        {"attribute name", calls("@a!=")},
        {"prefix without namespace", calls("<p:b")},
        {"attribute prefix without namespace", calls("@p:b=")},
        {"bad prefix", calls("+a!@1")},
        {"xml bound elsewhere", calls("+xml@1")},
        {"the xmlns namespace", calls("+p@xmlns")},
        {"prefix unbound", calls("@xmlns:p@xmlns=")},
        {"the same attribute twice", calls("@p:once@1= @q:once@1=")},
    };
    for (const auto& row : refused) {
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
