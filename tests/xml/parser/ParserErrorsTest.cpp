// Every error of the parser: code, message, position; and how reading goes on after a callback.
#include "ParserFixture.h"

using namespace xmltest;

namespace {

struct ErrorRow {
    int code;
    std::string input;
    const char* message;
    const char* position;  // the event, its line and column; "*" stands for any column
};

void expectErrors(const std::vector<ErrorRow>& rows) {
    for (const ErrorRow& row : rows) {
        for (const std::size_t chunk : {0, 1, 3}) {
            const Outcome outcome = run(row.input, {.chunk = chunk});
            EXPECT_EQ(outcome.code, row.code) << row.input << " after " << outcome.events;
            EXPECT_EQ(outcome.source, "RynCommon::XmlParserImpl") << row.input;
            const std::string position(row.position);
            const std::size_t blank = position.find(' '), colon = position.find(':');
            std::string expected = row.message + ("\n" + position.substr(0, blank)) + ", Line " +
                                   position.substr(blank + 1, colon - blank - 1) + ", Col ";
            if (!position.ends_with('*')) expected += position.substr(colon + 1) + ".";
            EXPECT_TRUE(position.ends_with('*') ? outcome.message.starts_with(expected)
                                                : outcome.message == expected)
                << row.input << ": " << outcome.message;
        }
    }
}

TEST(ParserErrors, Elements) {
    expectErrors({
        {6145, "<a>", "Missing end tag.", "END_DOCUMENT 1:3"},
        {6146, "<a/><b/>", "Only one top level element is allowed.", "START_TAG 1:6"},
        {6148, "<1/>", "Invalid start tag name.", "START_TAG 1:2"},
        {6149, "<a></>", "Invalid end tag name.", "END_TAG 1:6"},
        {6150, "<p:a xmlns:p='u'>\n</a>", "End tag 'a' does not match the start tag 'p:a'.",
         "END_TAG 2:4"},
        {6150, "<a/></b>", "End tag 'b' does not match the start tag ''.", "END_TAG 1:8"},
        {6151, "<p:a/>", "Undeclared namespace prefix: p", "START_TAG 1:6"},
        {6152, "<a x='1' x='2'/>", "Duplicate attribute: x", "START_TAG 1:16"},
        {6152, "<a xmlns:p='u' xmlns:q='u' p:x='1' q:x='2'>", "Duplicate attribute: q:x",
         "START_TAG 1:43"},
        {6152, "<a xmlns:p='u' xmlns:p='v'/>", "Duplicate attribute: xmlns:p", "START_TAG 1:28"},
        {6153, "<a 1='x'/>", "Invalid attribute name: 1", "START_TAG 1:*"},
        {6154, "<a x/>", "Missing '=' after attribute name.", "START_TAG 1:5"},
        {6155, "<a x='1'y='2'/>", "Missing whitespace between attributes.", "START_TAG 1:9"},
        {6156, "<a x='1'?/>", "Unexpected character: ?", "START_TAG 1:9"},
        {6156, "<a></a x>", "Unexpected character: x", "END_TAG 1:8"},
        {6157, "< a/>", "Unexpected whitespace after '<'.", "START_TAG 1:2"},
        {6157, "<a></\na>", "Unexpected whitespace after '</'.", "END_TAG 2:0"},
    });
}

TEST(ParserErrors, TextAndMarkup) {
    expectErrors({
        {6158, "<a/>x", "Unexpected text at top level of the document: U+0078 (x)",
         "IGNORABLE_WHITESPACE 1:5"},
        {6158, "<a/> \n \xF0\x9F\x98\x80",
         "Unexpected text at top level of the document: U+1F600 (\xF0\x9F\x98\x80)",
         "IGNORABLE_WHITESPACE 2:2"},
        {6158, "&lt;<a/>", "Unexpected text at top level of the document: &lt;", "ENTITY_REF 1:4"},
        {6158, "<a/><![CDATA[x]]>", "Unexpected text at top level of the document: <![CDATA[",
         "CDSECT 1:13"},
        {6160, "<a>x]]>y</a>", "Unexpected ']]>'.", "TEXT 1:7"},
        {6161, "<a><![CDATA[x]]",
         "Unexpected end of input while looking for CDATA section terminator ']]>'.",
         "CDSECT 1:15"},
        {6162, "<a><!--x-", "Unexpected end of input while looking for comment terminator '-->'.",
         "COMMENT 1:9"},
        {6163, "<!--a--b--><a/>", "Unexpected character after -- in comment", "COMMENT 1:8"},
        {6184, "<a><![CDAT[x]]></a>", "Invalid syntax in CDATA section.", "CDSECT 1:*"},
        {6185, "<!-x--><a/>", "Invalid syntax in comment.", "COMMENT 1:4"},
        {6186, "<!FOO><a/>", "Unexpected '<!FOO'.", "START_DOCUMENT 1:6"},
        {6187, "<a/><?XML x?>", "The name 'xml' must be lower case: <?XML",
         "PROCESSING_INSTRUCTION 1:10"},
        {6188, "<?p?><a/>", "Missing whitespace after PI target: <?p",
         "PROCESSING_INSTRUCTION 1:4"},
        {6189, "<?p x?", "Unexpected end of input while looking for PI terminator '?>'.",
         "PROCESSING_INSTRUCTION 1:6"},
        {6190, "<a x=1/>", "Missing quotation character (\" or ').", "START_TAG 1:6"},
        {6191, "<a x=\"1", "Unexpected end of input while looking for literal terminator (\").",
         "START_TAG 1:7"},
        {6192, "<a x='<'/>", "Unexpected '<' in attribute value.", "START_TAG 1:7"},
        {6196, "<a>\xEF\xBF\xBF</a>", "Invalid character.", "START_TAG 1:4"},
    });
}

TEST(ParserErrors, References) {
    expectErrors({
        {6171, "<a>&;</a>", "Empty entity name.", "ENTITY_REF 1:5"},
        {6172, "<a>&b c;</a>", "Invalid character in entity reference: &b ;", "ENTITY_REF 1:6"},
        {6172, "<a x='&b<'/>", "Invalid character in entity reference: &b<;", "START_TAG 1:9"},
        {6174, "<a>&e;</a>", "Reference to undefined entity: &e;", "ENTITY_REF 1:6"},
        {6193, "<a>&#65 ;</a>", "Unexpected whitespace in character reference: &#65;",
         "ENTITY_REF 1:8"},
        {6194, "<a>&#;</a>", "Invalid character in character reference: &#;", "ENTITY_REF 1:6"},
        {6194, "<a>&#xg;</a>", "Invalid character in character reference: &#x;", "ENTITY_REF 1:7"},
        {6194, "<a>&#X41;</a>", "Invalid character in character reference: &#;", "ENTITY_REF 1:6"},
        {6194, "<a x='&#65", "Invalid character in character reference: &#65;", "START_TAG 1:10"},
        {6195, "<a>&#x110000;</a>", "Invalid unicode character: &#x110000;", "ENTITY_REF 1:13"},
    });
}

TEST(ParserErrors, Declaration) {
    const std::string head = "<?xml version=\"1.0\"";  // 19 characters
    const char* early = "START_DOCUMENT 1:*";
    expectErrors({
        {6177, "<a/><?xml version='1.0'?>", "Unexpected XML declaration.",
         "PROCESSING_INSTRUCTION 1:*"},
        {6178, "<?xml encoding='UTF-8'?><a/>",
         "Missing 'version=' after '<?xml ' in XML declaration.", early},
        {6179, "<?xml version'1.0'?><a/>", "Missing '=' after '<?xml version' in XML declaration.",
         "START_DOCUMENT 1:14"},
        {6179, head + " standalone'yes'?><a/>",
         "Missing '=' after 'standalone' in XML declaration.", "START_DOCUMENT 1:31"},
        {6180, "<?xml?><a/>", "Missing whitespace after '<?xml' in XML declaration.",
         "START_DOCUMENT 1:6"},
        {6181, head + " encoding='UTF-8'standalone='yes'?><a/>",
         "Missing whitespace before 'standalone=' in XML declaration.", early},
        {6182, "<?xml version='2.0'?><a/>", "Unsupported XML version: 2.0", "START_DOCUMENT 1:19"},
        {6183, head + " standalone='Yes'?><a/>",
         "Invalid standalone declaration in XML declaration.", "START_DOCUMENT 1:36"},
        {6156, head + "!?><a/>", "Unexpected character: !", "START_DOCUMENT 1:20"},
        {6197, head + " encoding='x-nope'?><a/>", "Unknown or unsupported encoding: x-nope.",
         early},
        {6201, "\xEF\xBB\xBF" + head + " encoding='UTF-16'?><a/>", "Conflict encoding: UTF-16.",
         early},
    });
}

TEST(ParserErrors, DocumentType) {
    const std::string head = "<!DOCTYPE a [";  // 13 characters
    const char* there = "DOCDECL 1:*";
    expectErrors({
        {6147, "<!DOCTYPE 1><a/>", "Invalid root tag name after '<!DOCTYPE'.", "DOCDECL 1:11"},
        {6159, head + "<![FOO[ ]]>]><a/>", "Unexpected '<![FOO'.", there},
        {6164, "<a/><!DOCTYPE a>", "Unexpected DOCTYPE declaration outside of prolog.", there},
        {6165, "<!DOCTYPE a><!DOCTYPE a><a/>", "Cannot have multiple DOCTYPE declarations.", there},
        {6166, "<!DOCTYPE>", "Missing whitespace after '<!DOCTYPE'.", "DOCDECL 1:10"},
        {6167, "<!DOCTYPE a FOO><a/>", "ExternalID is expected after '<!DOCTYPE a'.", there},
        {6167, head + "<!ENTITY e FOO>]><a/>", "ExternalID is expected after '<!ENTITY e'.", there},
        {6168, "<!DOCTYPE a PUBLIC><a/>", "PubidLiteral is expected after 'PUBLIC'.", there},
        {6169, "<!DOCTYPE a SYSTEM><a/>", "SystemLiteral is expected after 'SYSTEM'.", there},
        {6169, "<!DOCTYPE a PUBLIC 'p'><a/>", "SystemLiteral is expected after 'PUBLIC'.", there},
        {6170, head, "Unexpected end of input in DOCTYPE declaration.", "DOCDECL 1:13"},
        {6170, head + "<!ENTITY e 'v'", "Unexpected end of input in ENTITY declaration.",
         "DOCDECL 1:27"},
        {6171, head + "%;]><a/>", "Empty entity name.", "DOCDECL 1:15"},
        {6173, head + "%p;]><a/>", "Reference to undefined entity: %p;", "DOCDECL 1:16"},
        {6175, head + "<!ENTITY 'v'>]><a/>", "Entity name is expected after '<!ENTITY'.",
         "DOCDECL 1:23"},
        {6175, head + "<!ENTITY % 'v'>]><a/>", "Entity name is expected after '<!ENTITY %'.",
         "DOCDECL 1:25"},
        {6176, head + "<!ENTITY e SYSTEM 's' FOO n>]><a/>", "NDATA is expected after '<!ENTITY e'.",
         there},
    });
}

TEST(ParserErrors, PositionNamesTheInputOrElseItsBase) {
    Resources resources;
    const std::string bytes = "<a>\n</b>";
    resources.files["http://t.example/errors.xml"] = bytes;
    const std::string text = "End tag 'b' does not match the start tag 'a'.\nEND_TAG, '";
    const struct {
        const char *base, *uri, *shown;
    } rows[] = {
        {"http://b.example/", "", "http://b.example/"},
        {"", "http://t.example/errors.xml", "http://t.example/errors.xml"},
        {"http://b.example/", "http://t.example/errors.xml", "http://t.example/errors.xml"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(bytes, {.base = row.base, .uri = row.uri}).message,
                  text + row.shown + "', Line 2, Col 4.");
}

TEST(ParserErrors, ThrownErrorCarriesItsPositionInTheMessageOnly) {
    Opened<ChunkBuf> parser("<a>&e;</a>", 100);
    parser->next();
    const RyError error = errorOf([&] { parser->next(); });
    EXPECT_EQ(error.getErrorCode(), 6174);
    EXPECT_EQ(error.getErrorCategory(), RynCommon::RYERROR_XML);
    EXPECT_EQ(error.getLineNumber(), -1);
    EXPECT_EQ(error.getColumnNumber(), -1);
    EXPECT_TRUE(error.getUri().isEmpty());
}

TEST(ParserErrors, CallbackGetsTheFullCodeAndTheBareMessage) {
    const Outcome outcome = run("<!DOCTYPE a [%p;]><a>&e;</b>", {.callback = true});
    EXPECT_EQ(outcome.codes, "7709 7710 6150");
    const std::vector<std::string> messages = {"Reference to undefined entity: %p;",
                                               "Reference to undefined entity: &e;",
                                               "End tag 'b' does not match the start tag 'a'."};
    EXPECT_EQ(outcome.reported, messages);
}

TEST(ParserErrors, CallbackMayThrowAndMayBeTakenAway) {
    Opened<ChunkBuf> parser("<a>&e;</a>", 100);
    parser->setCallbackError([](const RyError&, void* user) { throw static_cast<int*>(user); },
                             nullptr);
    parser->next();
    EXPECT_THROW(parser->next(), int*);
    parser->setCallbackError(nullptr, nullptr);
    ChunkBuf second("<a>&e;</a>", 100);
    std::istream in(&second);
    parser->setInput(in, UnicodeString(), UnicodeString());
    parser->next();
    EXPECT_EQ(errorOf([&] { parser->next(); }).getErrorCode(), 6174);
}

TEST(ParserErrors, ReadingGoesOnAfterTheCallback) {
    expectRows(
        {
            {"<a>", "6145 | S(a) ."},
            {"<a></b>", "6150 | S(a) E(a) ."},
            {"<a><b></a>", "6150 6145 | S(a) S(b) E(b) ."},
            {"<a><b></c></a>", "6150 | S(a) S(b) E(b) E(a) ."},
            {"</b></c><a/>", "6150 6150 | S(a) E(a) ."},
            {"<a/><b>x</b>", "6146 | S(a) E(a) S(b) T(x) E(b) ."},
            {"<p:a q:x='1'/>", "6151 6151 | S(p:a q:x=1) E(p:a) ."},
            {"<a x='1' x='2'/>", "6152 | S(a x=1 x=2) E(a) ."},
            {"<a x='1'y='2'/>", "6155 | S(a x=1 y=2) E(a) ."},
            {"<a></ a>", "6157 | S(a) E(a) ."},
            {"<a>x]]>y</a>", "6160 | S(a) T(x]]>y) E(a) ."},
            {"<a>x<![CDATA[y", "6161 6145 | S(a) T(xy) ."},
            {"<a>x<!--y", "6162 6145 | S(a) T(x) ."},
            {"<a>x<?y z", "6189 6145 | S(a) T(x) ."},
            {"<!DOCTYPE a><!DOCTYPE b><a/>", "6165 | S(a) E(a) ."},
            {"<a>x&e;y</a>", "7710 | S(a) T(xy) E(a) ."},
            {"<a x='1&e;2'/>", "7710 | S(a x=12) E(a) ."},
            {"<!DOCTYPE a [%p; <!ENTITY e 'v'>]><a>&e;</a>", "7709 | S(a) T(v) E(a) ."},
            {"<?xml version='2.0'?><a/>", "6182 | S(a) E(a) ."},
            {"<?xml version='1.0' standalone='x'?><a/>", "6183 | S(a) E(a) ."},
            {"<?xml version='1.0' encoding='x-nope'?><a>\xC3\xA9</a>",
             "6197 | S(a) T(\\u{E9}) E(a) ."},
            {"x<a/>yz&#65;&lt;<![CDATA[<b/>]]>\n", "6158 6158 6158 6158 6158 6158 | S(a) E(a) ."},
            {"<a/><?xml version='1.0'?>", "6177 | S(a) E(a) ."},
            {"<a>x\xEF\xBF\xBFy</a>", "6196 | S(a) T(xy) E(a) ."},
            {"<a <b/></a>", "6156 | S(a) S(b) E(b) E(a) ."},
            {"<a x></a>", "6154 | S(a) E(a) ."},
            {"<a x=></a>", "6190 | S(a) E(a) ."},
            {"<a x='<b'/>", "6192 | S(a x=<b) E(a) ."},
            {"<a>&#0;x&b c;</a>", "6195 6172 | S(a) T(x c;) E(a) ."},
            {"<?XML x?><?p?><a/>", "6187 6188 | S(a) E(a) ."},
            {"<!DOCTYPE a FOO><a/>", "6167 | S(a) E(a) ."},
            {"<!DOCTYPE a [<!FOO x><!ENTITY e><!ENTITY f 'v'>]><a>&f;</a>",
             "6186 6167 | S(a) T(v) E(a) ."},
            {"<a b='1'", "6156 6145 | S(a b=1) ."},
            {"<a><b></b", "6156 6145 | S(a) S(b) E(b) ."},
        },
        {.callback = true});
    expectRows(
        {
            {"<a><!--x--y--></a>", "6163 | S(a) K(x--y) E(a) ."},
            {"<a><!--x---></a>", "6163 | S(a) K(x-) E(a) ."},
            {"<a><!--x", "6162 6145 | S(a) K(x) ."},
            {"<a><![CDATA[x]", "6161 6145 | S(a) C(x]) ."},
            {"<?p x", "6189 | P(p x) ."},
        },
        {.tokens = true, .callback = true});
}

}  // namespace
