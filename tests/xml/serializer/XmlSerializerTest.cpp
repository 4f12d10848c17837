// The serializer: calls in, bytes out, and errors.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <new>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "core/MemoryCheck.h"
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
    const auto text = [](const UnicodeString& value) -> Script {
        return [value](RyXmlSerializer& s) {
            s.startTag(NONE, NONE, name(u"r"), false);
            s.text(value);
        };
    };
    const auto value = [](const UnicodeString& v) -> Script {
        return [v](RyXmlSerializer& s) {
            s.startTag(NONE, NONE, name(u"r"), false);
            s.attribute(NONE, A, v);
        };
    };
    expectAll(
        {
            {"text", text(u"a<b>&\"'"), "<r>a&lt;b&gt;&amp;\"'"},
            {"lone surrogates", text(UnicodeString(u"\xD83D.\xDE00\xD83D")),
             "<r>\xED\xA0\xBD.\xED\xB8\x80\xED\xA0\xBD"},
            {"empty text closes the tag", text(u""), "<r>"},
            {"attribute", value(u"<&>\"'\t\n\r\u0001"), "<r a=\"&lt;&amp;&gt;&quot;'\t\n\r\">"},
            {"CDATA", calls("<r [<&]]>\x02"), "<r><![CDATA[<&]]>]]>"},
            {"reference", calls("<r &eacute"), "<r>&eacute;"},
            {"PI", calls("<r ?t"), "<r><?t?>"},
            {"comment", calls("<r #a--&"), "<r><!--a--&-->"},
            {"white space", [](auto& s) { s.ignorableWhitespace(u"\n x<"); }, "\n x<"},
            {"part of a buffer", [](auto& s) { s.text(u"abcdef", 2, 3); }, "cde"},
            {"no buffer", [](auto& s) { s.text(nullptr, 0, 3); }, ""},
            {"names are not escaped", calls("<a<&\u00E9"), "<a<&\xC3\xA9>"},
        },
        u"UTF-8");
    expectAll(
        {
            {"mapped", text(u"\u65E5\u672C\uFF71\\~\u2460"), "<r>\x93\xFA\x96\x7B\xB1\\~\x87\x40"},
            {"missing", text(u"\u00E9\u301C\u00A5"), "<r>&#233;&#12316;&#165;"},
            {"a pair is one reference", text(u"\U0001F600"), "<r>&#128512;"},
            {"lone surrogate", text(UnicodeString(u"\xD83D.")), "<r>&#55357;."},
            {"everywhere", calls("<r #\u00E9"), "<r><!--&#233;-->"},
            {"value", value(u"\u65E5\u00E9\""), "<r a=\"\x93\xFA&#233;&quot;\">"},
        },
        u"SHIFT_JIS");
    expectAll({{"only that spelling", text(u"\u65E5"), "<r>\xE6\x97\xA5"}}, u"SHIFT-JIS");
}

TEST(XmlSerializerTest, WrongOrderOfCalls) {
    const Script nothing = [](auto&) {};
    const Script begin = [](auto& s) { s.startDocument(u"", u""); };
    const Script docdecl = [](auto& s) { s.docdecl(u"a"); };
    const Script flushed = [](auto& s) {
        s.startTag(NONE, NONE, A, false);
        s.flush();
    };
    const Script open = calls("<p:a@1");
    const struct {
        const char* what;
        Script before, call;
        const char* failure;  // code, place and the message's end
    } rows[] = {
        {"startDocument in an element", open, begin,
         "2060 startDocumen startDocument() must be called just after setOutput()."},
        {"attribute first", nothing, calls("@a=1"),
         "2061 attributeSub attribute() must be called just after startTag()."},
        {"attribute after setPrefix", calls("<a +p@1"), calls("@a=1"),
         "2061 attributeSub attribute() must be called just after startTag()."},
        {"attribute after flush", flushed, calls("@a=1"),
         "2061 attributeSub attribute() must be called just after startTag()."},
        {"nothing open", begin, calls("/a"), "2062 endTagt Unexpected endTag()."},
        {"other name", open, calls("/b@1"),
         "2063 endTagt End tag 'p:b' does not match the start tag 'p:a'."},
        {"other namespace", calls("<p:a@1 x"), calls("/a@2"),
         "2063 endTagt End tag '{urn:2}:a' does not match the start tag 'p:a'."},
        {"no namespace", open, calls("/a"),
         "2063 endTagt End tag 'a' does not match the start tag 'p:a'."},
        {"docdecl first", nothing, docdecl, "2064  Unexpected docdecl()."},
        {"docdecl in an element", open, docdecl, "2064  Unexpected docdecl()."},
    };
    for (const auto& row : rows) {
        std::ostringstream out, same;
        const RyPtr<RyXmlSerializer> serializer = makeSerializer(), control = makeSerializer();
        serializer->setOutput(&out, UnicodeString());
        control->setOutput(&same, UnicodeString());
        row.before(*serializer);
        row.before(*control);
        const Failure failure = failureOf([&] { row.call(*serializer); });
        const std::string source = s(failure.source);
        EXPECT_EQ(std::to_string(failure.code) + " " + source.substr(source.rfind(':') + 1) + " " +
                      failure.message.substr(std::string("SYSTEM ERROR: ").size()),
                  row.failure)
            << row.what;
        serializer->endDocument();
        control->endDocument();
        EXPECT_EQ(out.str(), same.str()) << row.what;
    }
}

TEST(XmlSerializerTest, Docdecl) {
    for (const std::string text : {" a [<!ENTITY b '&#38;'>]", "\na"}) {
        const Script script = [&](auto& serializer) {
            serializer.startDocument(u"", u"");
            serializer.comment(u"c");
            serializer.docdecl(u(text[0] == ' ' ? text.substr(1) : text));
        };
        EXPECT_EQ(written(script, u""), "<?xml version=\"1.0\"?><!--c--><!DOCTYPE" + text + ">");
    }
}

// Takes so many bytes and fails from then on, for want of room or of memory.
class FullBuffer : public std::streambuf {
public:
    FullBuffer(int room, bool lacksMemory) : room_(room), lacksMemory_(lacksMemory) {}

protected:
    int overflow(int c) override {
        if (--room_ >= 0) return c;
        return fail(traits_type::eof());
    }
    int sync() override { return room_ > 0 ? 0 : fail(-1); }

private:
    int fail(int result) const {
        if (lacksMemory_) throw std::bad_alloc();
        return result;
    }

    int room_;
    bool lacksMemory_;
};

TEST(XmlSerializerTest, OutputErrors) {
    const std::vector<std::pair<const char*, Script>> rows = {
        {"startDocument", [](auto& s) { s.startDocument(u"", u""); }},
        {"docdecl", [](auto& s) { s.docdecl(u"a"); }},
        {"setPrefix", calls("+p@1")},
        {"startTag", calls("<a")},
        {"attribute", calls("@a=")},
        {"text", calls("x")},
        {"cdsect", calls("[")},
        {"entityRef", calls("&a")},
        {"processingInstruction", calls("?a")},
        {"comment", calls("#")},
        {"ignorableWhitespace", [](auto& s) { s.ignorableWhitespace(u""); }},
        {"endTag", calls("/a")},
        {"endDocument", [](auto& s) { s.endDocument(); }},
        {"flush", [](auto& s) { s.flush(); }},
    };
    for (const auto& [what, call] : rows) {
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
    const struct {
        const char* what;
        bool lacksMemory;
        std::ios::iostate thrown;
        int expected;
    } rows[] = {
        {"no room", false, std::ios::goodbit, 4103},
        {"no room, thrown", false, std::ios::badbit | std::ios::failbit, 4103},
        {"no memory", true, std::ios::goodbit, 4103},
        {"no memory, thrown", true, std::ios::badbit, 2049},
    };
    for (const auto& row : rows) {
        // What is written ends within the room, right at its end, and behind it; the last is more
        // than the serializer keeps back.
        for (const int length : {193, 200, 100'000}) {
            FullBuffer buffer(200, row.lacksMemory);
            std::ostream out(&buffer);
            out.exceptions(row.thrown);
            const RyPtr<RyXmlSerializer> s = makeSerializer();
            const auto write = [&](auto end) {
                s->setOutput(&out, UnicodeString());
                out.clear();
                s->startTag(NONE, NONE, A, false);
                s->text(UnicodeString(length, u'x', length));
                end();
            };
            const auto codeOf = [&](auto end) {
                return failureOf([&] { withMemoryError(u"", [&] { write(end); }); }).code;
            };
            EXPECT_EQ(codeOf([&] { s->endDocument(); }), row.expected) << row.what << length;
            if (length < 1000) {
                EXPECT_EQ(failureOf([&] { s->text(u""); }).code, 4101) << row.what << length;
            }
            out.clear();
            EXPECT_EQ(codeOf([&] { s->flush(); }), row.expected) << row.what << length;
            std::ostringstream other;
            s->setOutput(&other, UnicodeString());
            s->startTag(NONE, NONE, A, false);
            s->endDocument();
            EXPECT_EQ(other.str(), "<a/>") << row.what << length;
        }
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
    calls("<p:a@1 x")(*s);
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
    EXPECT_EQ(written(calls("<a " + s(text)), u""), expected);

    constexpr int DEPTH = 100000;
    std::ostringstream out;
    const RyPtr<RyXmlSerializer> serializer = makeSerializer();
    serializer->setOutput(&out, UnicodeString());
    std::string deep;
    for (int i = 0; i < DEPTH; ++i) {
        calls(i % 2 == 0 ? "<p:a@1" : "<p:a@2")(*serializer);
        deep += i % 2 == 0 ? "<p:a xmlns:p=\"urn:1\"" : "<p:a xmlns:p=\"urn:2\"";
        deep += i + 1 < DEPTH ? ">" : "/>";
    }
    for (int i = 1; i < DEPTH; ++i) deep += "</p:a>";
    serializer->endDocument();
    EXPECT_TRUE(out.str() == deep);
}

TEST(XmlSerializerTest, TypeIdentity) {
    const RyPtr<RyXmlSerializer> serializer(new XmlSerializerImpl);
    EXPECT_EQ(serializer->getTypeID(), 0x5695E1FBu);
    EXPECT_TRUE(serializer->isA(0x5695E1FBu) && serializer->isA(0xB2E73DE2u));
    EXPECT_FALSE(serializer->isA(0x3C8E51D7u));
    EXPECT_EQ(serializer->getTypeName(), u"XmlSerializerImpl");
}

}  // namespace
}  // namespace RynCommon
