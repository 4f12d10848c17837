// Which prefixes the serializer writes and declares.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/xml/serializer/SerializerScript.h"

namespace RynCommon {
namespace {

// Replaces each generated prefix by "-N*", checking that it is one.
std::string withoutNumbers(std::string text) {
    for (std::size_t at = 0; (at = text.find("-N", at)) != std::string::npos; at += 3) {
        const std::size_t end = text.find_first_not_of("0123456789", at + 2);
        EXPECT_GT(end, at + 2) << text;
        EXPECT_GT(std::stoi(text.substr(at + 2, end - at - 2)), RYNAME_BUILTIN_LAST) << text;
        text.replace(at + 2, end - at - 2, "*");
    }
    return text;
}

TEST(SerializerPrefixTest, TagsAndPrefixes) {
    const std::vector<Case> cases = {
        {"two levels", calls("<a <b /b x /a"), "<a><b/>x</a>"},
        {"declared after the attributes, not again below",
         calls("<p:a@1 @b=1 <p:b@1 @p:a@1=2 /b@1 /a@1"),
         "<p:a b=\"1\" xmlns:p=\"urn:1\"><p:b p:a=\"2\"/></p:a>"},
        {"default namespace, taken away below and back again", calls("<a@1 <b <a@1 /a@1 /b <b@1"),
         "<a xmlns=\"urn:1\"><b xmlns=\"\"><a xmlns=\"urn:1\"/></b><b>"},
        {"a prefix bound to another namespace below", calls("<p:a@1 <p:a@2 /a@2 <p:b@1"),
         "<p:a xmlns:p=\"urn:1\"><p:a xmlns:p=\"urn:2\"/><p:b>"},
        {"generated for an element", calls("<*p:a@1 <*q:b@1"),
         "<-N*:a xmlns:-N*=\"urn:1\"><-N*:b>"},
        {"taken over by an element", calls("+p@1 +@2 <*a@1 <*p:b@2"),
         "<p:a xmlns:p=\"urn:1\" xmlns=\"urn:2\"><b>"},
        {"a default serves no attribute", calls("<a@1 @b@1=1 @:p@1=2"),
         "<a -N*:b=\"1\" -N*:p=\"2\" xmlns=\"urn:1\" xmlns:-N*=\"urn:1\">"},
        {"an attribute takes the prefix in force", calls("<p:a@1 @b@1=1 @q:p@1=2"),
         "<p:a p:b=\"1\" q:p=\"2\" xmlns:p=\"urn:1\" xmlns:q=\"urn:1\">"},
        {"the first name keeps the prefix", calls("<p:a@1 @p:b@2=1 @p:a@2=2"),
         "<p:a -N*:b=\"1\" -N*:a=\"2\" xmlns:p=\"urn:1\" xmlns:-N*=\"urn:2\">"},
        {"an inherited prefix in use is not bound anew", calls("<p:a@1 <p:b@1 @p:b@2=1"),
         "<p:a xmlns:p=\"urn:1\"><p:b -N*:b=\"1\" xmlns:-N*=\"urn:2\">"},
        {"a declaration gives way to a name", calls("<a @xmlns:p@xmlns=urn:1 @p:b@2=1"),
         "<a p:b=\"1\" xmlns:p=\"urn:2\" xmlns:-N*=\"urn:1\">"},
        {"and comes too late after one", calls("<p:a@1 @xmlns:p@xmlns=urn:2"),
         "<p:a xmlns:p=\"urn:1\" xmlns:-N*=\"urn:2\">"},
        {"setPrefix gives way, too", calls("+p@1 <p:a@2"),
         "<p:a xmlns:p=\"urn:2\" xmlns:-N*=\"urn:1\">"},
        {"setPrefix twice", calls("+p@1 +p@2 +p@1 <a"),
         "<a xmlns:p=\"urn:1\" xmlns:-N*=\"urn:2\">"},
        {"setPrefix closes a pending tag; nothing in force is declared again",
         calls("<p:a@1 +p@1 +q@2 x <q:b@2 /b@2 +q@2 /a@1"),
         "<p:a xmlns:p=\"urn:1\">x<q:b xmlns:q=\"urn:2\"/></p:a>"},
        {"explicit declarations are always written, in order",
         calls("<p:a@1 <p:b@1 @xmlns:q@xmlns=u&\" @:xmlns=urn:2 @xmlns:p=urn:1"),
         "<p:a xmlns:p=\"urn:1\"><p:b xmlns:q=\"u&amp;&quot;\" xmlns=\"urn:2\" xmlns:p=\"urn:1\">"},
        {"a default on an element without a namespace", calls("<a @xmlns=urn:1 <b @xmlns=urn:1"),
         "<a xmlns=\"urn:1\"><b xmlns=\"\" xmlns:-N*=\"urn:1\">"},
        {"xml is never declared",
         calls("<a @lang@xml=de @q:space@xml=preserve @xmlns:xml@xmlns=urn:1 @xml:a@1=1"),
         "<a xml:lang=\"de\" xml:space=\"preserve\" -N*:a=\"1\" xmlns:-N*=\"urn:1\">"},
        {"a prefix that means something else from tag to tag",
         calls("+p@1 <p:a@1 <p:b@1 <p:c@2 <p:d@2 /d@2 /c@2 <p:e@1 /e@1 /b@1 <p:f@2"),
         "<p:a xmlns:p=\"urn:1\"><p:b><p:c xmlns:p=\"urn:2\"><p:d/></p:c><p:e/></p:b>"
         "<p:f xmlns:p=\"urn:2\">"},
        {"every name of a tag keeps its prefix, also as in the tag before",
         calls("+p@1 +q@2 +r@3 <p:a@1 <p:b@1 @q:a@2=1 /b@1 <p:b@1 @q:a@2=1 @r:b@3=2 @q:c@4=3 "
               "@p:d@4=4 @r:e@5=5"),
         "<p:a xmlns:p=\"urn:1\" xmlns:q=\"urn:2\" xmlns:r=\"urn:3\"><p:b q:a=\"1\"/>"
         "<p:b q:a=\"1\" r:b=\"2\" -N*:c=\"3\" -N*:d=\"4\" -N*:e=\"5\" xmlns:-N*=\"urn:4\" "
         "xmlns:-N*=\"urn:5\">"},
        {"but the next tag is free again",
         calls("+p@1 +q@2 <p:a@1 @q:a@2=1 <p:b@1 @q:a@2=1 /b@1 <q:b@3 @p:a@2=1"),
         "<p:a q:a=\"1\" xmlns:p=\"urn:1\" xmlns:q=\"urn:2\"><p:b q:a=\"1\"/>"
         "<q:b p:a=\"1\" xmlns:q=\"urn:3\" xmlns:p=\"urn:2\">"},
        {"a prefix without a namespace is written", calls("<p:a @q:b=1"), "<p:a q:b=\"1\">"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(withoutNumbers(written(row.script, u"UTF-8")), row.expected) << row.what;
}

TEST(SerializerPrefixTest, PrefixQueries) {
    std::ostringstream out;
    const RyPtr<RyXmlSerializer> s = makeSerializer();
    s->setOutput(&out, UnicodeString());
    EXPECT_EQ(s->getPrefix(RN_NS_xml, false), RN_xml);
    s->startTag(NS1, P, A, false);
    s->startTag(NS1, Q, B, false);
    EXPECT_EQ(s->getPrefix(NS1, false), Q) << "the latest wins";
    s->startTag(NS2, Q, B, false);
    EXPECT_EQ(s->getPrefix(NS1, false), P) << "q is hidden";
    EXPECT_EQ(s->getPrefix(name(u"urn:3"), false), NONE);
    const RyName made = s->getPrefix(name(u"urn:3"), true);
    EXPECT_EQ(s->getPrefix(name(u"urn:3"), true), made);
    s->text(UnicodeString());
    const RyName next = s->getPrefix(name(u"urn:4"), true);
    s->startTag(name(u"urn:4"), NONE, A, true);
    EXPECT_EQ(s->getDepth(), 4);
    s->endTag(name(u"urn:4"), A);
    s->endTag(NS2, B);
    EXPECT_EQ(s->getPrefix(NS1, false), Q) << "q is back";
    EXPECT_EQ(s->getPrefix(name(u"urn:3"), false), NONE);
    EXPECT_EQ(s->getNamespace(), NS1);
    EXPECT_EQ(s->getName(), B);
    s->endDocument();
    EXPECT_EQ(s->getDepth(), 0);
    EXPECT_EQ(s->getName(), NONE);
    UnicodeString expected(
        u"<p:a xmlns:p=\"urn:1\"><q:b xmlns:q=\"urn:1\"><q:b xmlns:q=\"urn:2\" xmlns:");
    expected += made.toString() + u"=\"urn:3\"><" + next.toString() + u":a xmlns:" +
                next.toString() + u"=\"urn:4\"/></q:b></q:b></p:a>";
    EXPECT_EQ(UnicodeString::fromUTF8(out.str()), expected);
}

TEST(SerializerPrefixTest, ManyDeclarations) {
    constexpr int COUNT = 6000;
    std::ostringstream out;
    const RyPtr<RyXmlSerializer> s = makeSerializer();
    s->setOutput(&out, UnicodeString());
    std::vector<std::pair<RyName, RyName>> bindings;
    for (int i = 0; i < COUNT; ++i) {
        const UnicodeString number = UnicodeString::fromUTF8(std::to_string(i));
        bindings.emplace_back(u"p" + number, u"urn:n" + number);
        s->setPrefix(bindings.back().first, bindings.back().second);
    }
    s->startTag(NONE, NONE, A, false);
    for (const auto& [prefix, ns] : bindings) {
        ASSERT_EQ(s->getPrefix(ns, false), prefix);
        s->attribute(ns, A, UnicodeString());
    }
    s->endDocument();
    EXPECT_NE(out.str().find(" p5999:a=\"\""), std::string::npos);
    EXPECT_EQ(out.str().find("-N"), std::string::npos);
}

}  // namespace
}  // namespace RynCommon
