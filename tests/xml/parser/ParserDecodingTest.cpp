// How bytes become characters: damaged sequences, line ends, lines and columns.
#include "ParserFixture.h"

using namespace xmltest;

namespace {

/// A document whose root holds `content` in the given encoding.
std::string inRoot(const char* encoding, std::u32string_view content) {
    return encode(encoding, U"<a>" + std::u32string(content) + U"</a>");
}

TEST(ParserDecoding, TruncatedUtf8NeverHidesWhatFollows) {
    const struct {
        const char* lead;
        int length;
    } leads[] = {{"\xC3", 2}, {"\xDF", 2}, {"\xE3", 3}, {"\xEF", 3}, {"\xF0", 4}, {"\xF4", 4}};
    const struct {
        const char *bytes, *shown;
    } followers[] = {
        {"x", "x"},    {"&amp;", "&"}, {"\xF0\x9F\x98\x80", "\\u{1F600}"}, {"\xFF", "\\u{FFFD}"},
        {"\n", "\\n"}, {"", ""}};  // the end tag follows at once
    for (const auto& lead : leads) {
        std::string broken = lead.lead;
        for (int present = 1; present < lead.length; ++present) {
            for (const auto& follower : followers) {
                const std::string bytes = "<a>" + broken + follower.bytes + "</a>";
                expectInAllChunks(shown(fromUtf8(bytes)), bytes, {},
                                  "S(a) T(\\u{FFFD}"s + follower.shown + ") E(a) .");
            }
            expectInAllChunks("at the end", "<a>" + broken, {.callback = true},
                              "6145 | S(a) T(\\u{FFFD}) .");
            expectInAllChunks("in a value", "<a x='" + broken + "'/>", {},
                              "S(a x=\\u{FFFD}) E(a) .");
            expectInAllChunks("in a comment", "<!--" + broken + "--><a/>", {.tokens = true},
                              "K(\\u{FFFD}) S(a) E(a) .");
            broken += "\x90";
        }
    }
}

TEST(ParserDecoding, Utf8ThatIsNoCharacter) {
    const std::string f = "\\u{FFFD}";
    const struct {
        const char* what;
        std::string bytes, shown;
    } rows[] = {
        {"stray continuations", "\x80\xBF", f + f},
        {"leads of five and six bytes", "\xF8\x88\x80\x80\x80", f + f + f + f + f},
        {"high surrogate", "\xED\xA0\x80", f},
        {"a pair of surrogates", "\xED\xA0\xBD\xED\xB8\x80", f + f},
        {"above U+10FFFF", "\xF4\x90\x80\x80", f},
        {"U+10FFFF", "\xF4\x8F\xBF\xBF", "\\u{10FFFF}"},
        {"U+D7FF and U+E000", "\xED\x9F\xBF\xEE\x80\x80", "\\u{D7FF}\\u{E000}"},
        {"U+0080, U+0800 and U+10000", "\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80",
         "\\u{80}\\u{800}\\u{10000}"},
        {"overlong forms are taken", "\xE0\x83\xA9\xF0\x84\xB8\xAD", "\\u{E9}\\u{4E2D}"},
    };
    for (const auto& row : rows) {
        expectInAllChunks(row.what, "<a>[" + row.bytes + "]</a>", {},
                          "S(a) T([" + row.shown + "]) E(a) .");
        expectInAllChunks(row.what + " in a value"s, "<a x='" + row.bytes + "'/>", {},
                          "S(a x=" + row.shown + ") E(a) .");
    }
}

TEST(ParserDecoding, WideUnitsThatAreNoCharacter) {
    const std::string f = "\\u{FFFD}";
    const struct {
        const char* what;
        std::u32string content;
        std::string shown;
    } rows[] = {
        {"high alone", {0xD800, 'x'}, f + "x"},
        {"low alone", {0xDC00, 'x'}, f + "x"},
        {"high, pair", {0xD800, 0x1F600}, f + "\\u{1F600}"},
        {"low, high", {0xDC00, 0xD800, 'x'}, f + f + "x"},
    };
    for (const char* encoding : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        for (const auto& row : rows) {
            expectInAllChunks(row.what + ", "s + encoding, inRoot(encoding, row.content), {},
                              "S(a) T(" + row.shown + ") E(a) .");
        }
        const std::string cut = inRoot(encoding, U"x").substr(0, encode(encoding, U"<a>x").size());
        const std::size_t unit = encode(encoding, U"x").size();
        for (std::size_t less = 1; less < unit; ++less) {
            expectInAllChunks("unit cut short, "s + encoding, cut.substr(0, cut.size() - less),
                              {.callback = true}, "6145 | S(a) T(" + f + ") .");
        }
    }
    for (const char* encoding : {"UTF-32LE", "UTF-32BE"}) {
        for (const char32_t c : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            expectInAllChunks("above U+10FFFF", inRoot(encoding, std::u32string{U'x', c}), {},
                              "S(a) T(x" + f + ") E(a) .");
        }
    }
    expectInAllChunks("high surrogate at the end",
                      encode("UTF-16LE", std::u32string{U'<', U'a', U'>', 0xD83D}),
                      {.callback = true}, "6145 | S(a) T(" + f + ") .");
}

TEST(ParserDecoding, RealFFFFIsAnErrorAndDropped) {
    for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        expectInAllChunks(encoding, inRoot(encoding, U"x\uFFFFy"), {}, "S(a) !6196");
        expectInAllChunks(encoding, inRoot(encoding, U"\uFFFF<b/>\uFFFF"), {.callback = true},
                          "6196 6196 | S(a) S(b) E(b) E(a) .");
        expectInAllChunks(encoding, inRoot(encoding, U"x\uFFFFy"), {.callback = true},
                          "6196 | S(a) T(xy) E(a) .");
        expectInAllChunks(encoding, encode(encoding, U"<a x='1\uFFFF2'/>"), {.callback = true},
                          "6196 | S(a x=12) E(a) .");
    }
}

// Characters of three bytes are taken many at a time; what is none of them may stand anywhere.
TEST(ParserDecoding, LongRunsOfIdeographs) {
    const struct {
        const char* what;
        std::string bytes, shown;
    } rows[] = {
        {"nothing else", "", ""},
        {"surrogate", "\xED\xA0\x80", "\\u{FFFD}"},
        {"many surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\xA0\x80", "\\u{FFFD}\\u{FFFD}\\u{FFFD}"},
        {"overlong", "\xE0\x83\xA9\xE0\x81\x81", "\\u{E9}A"},
        {"overlong CR", "\xE0\x80\x8D", "\\n"},
        {"overlong CR of two bytes", "\xC0\x8D", "\\n"},
        {"next line", "\xC2\x85", "\\n"},
        {"overlong next line", "\xE0\x82\x85", "\\n"},
        {"line separators", "\u2028\u2028", "\\n\\n"},
        {"CR and line separator", "\r\u2028\r\u0085", "\\n\\n\\n"},
        {"CR LF", "\r\n", "\\n"},
        {"U+FFFE, U+0800 and U+E000", "\xEF\xBF\xBE\u0800\xEE\x80\x80",
         "\\u{FFFE}\\u{800}\\u{E000}"},
        {"two and four bytes", "\u0416\u00E9\U0001F600x", "\\u{416}\\u{E9}\\u{1F600}x"},
        {"cut short", "\xE4\xB8", "\\u{FFFD}"},
        {"two bytes cut short", "\xD0", "\\u{FFFD}"},
        {"stray bytes", "\xB8\xFF", "\\u{FFFD}\\u{FFFD}"},
    };
    const auto ideographs = [](std::size_t count) {
        std::pair<std::string, std::string> run;
        for (; count != 0; --count) {
            run.first += "\u4E2D";
            run.second += "\\u{4E2D}";
        }
        return run;
    };
    constexpr std::size_t LENGTH = 36;
    for (const auto& row : rows) {
        for (std::size_t at = 0; at <= LENGTH; ++at) {
            const auto [before, beforeShown] = ideographs(at);
            const auto [after, afterShown] = ideographs(LENGTH - at);
            const std::string bytes = "<a>" + before + row.bytes + after + "</a>";
            const std::string expected =
                "S(a) T(" + beforeShown + row.shown + afterShown + ") E(a) .";
            EXPECT_EQ(run(bytes).summary(), expected) << row.what << " at " << at;
            EXPECT_EQ(run(bytes, {.chunk = 25 + at}).summary(), expected)
                << row.what << " at " << at << ", in chunks";
        }
    }
    for (std::size_t at = 0; at <= LENGTH; ++at) {
        const auto [text, textShown] = ideographs(at);
        const std::string bytes = "<a>" + text + "\uFFFF" + text + "</a>";
        EXPECT_EQ(run(bytes).summary(), "S(a) !6196") << at;
        const std::string between = at == 0 ? "" : "T(" + textShown + textShown + ") ";
        EXPECT_EQ(run(bytes, {.callback = true}).summary(), "6196 | S(a) " + between + "E(a) .")
            << at;
    }
}

TEST(ParserDecoding, LineEndsBecomeLf) {
    const std::pair<std::u32string, std::string> rows[] = {
        {U"1\r\n2", "1\\n2"},
        {U"1\n\r2", "1\\n\\n2"},
        {U"1\r\r\n2", "1\\n\\n2"},
        {U"x\u0085y", "x\\ny"},
        {U"x\r\u0085y", "x\\ny"},
        {U"x\u2028y", "x\\ny"},
        {U"x\r\u2028y", "x\\n\\ny"},
        {U"1\r\n\u0085\u2028\r", "1\\n\\n\\n\\n"},
        {U"\r&#13;&#x85;&#x2028;", "\\n\\r\\u{85}\\u{2028}"},
        {U"<![CDATA[\r\n]]>\r", "\\n\\n"},
        {U"\u2029\u000B", "\\u{2029}\\u{B}"},
    };
    for (const auto& [content, shown] : rows) {
        for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE"}) {
            expectInAllChunks(shown + " " + encoding, inRoot(encoding, content), {},
                              "S(a) T(" + shown + ") E(a) .");
        }
    }
    expectInAllChunks("one byte a character", "<a>x\x85y\r\x85z</a>", {.encoding = "ISO-8859-1"},
                      "S(a) T(x\\ny\\nz) E(a) .");
    expectInAllChunks("through a converter", "<a>\xB1\r\n\xB1\r\xB1</a>", {.encoding = "cp932"},
                      "S(a) T(\\u{FF71}\\n\\u{FF71}\\n\\u{FF71}) E(a) .");
    expectInAllChunks("at the end", "<a/>\r", {.tokens = true}, "S(a) E(a) W(\\n) .");
    expectInAllChunks("elsewhere", "<!--\r\n--><?p\r\n\r?><a\r\nx='\r\n'/>", {.tokens = true},
                      "K(\\n) P(p\\n\\n) S(a x= ) E(a) .");
}

TEST(ParserDecoding, ReplacementTextIsNotLineNormalised) {
    expectRows({{"<!DOCTYPE a [<!ENTITY e '1&#13;&#10;2&#13;3&#x85;'>]><a>&e;</a>",
                 "S(a) T(1\\r\\n2\\r3\\u{85}) E(a) ."},
                {"<!DOCTYPE a [<!ENTITY e '1\r\n2'>]><a>&e;</a>", "S(a) T(1\\n2) E(a) ."}});
}

TEST(ParserDecoding, LinesAndColumnsCountCharacters) {
    const struct {
        std::u32string input;  // the position is taken at the start tag b
        int line;
        int column;
    } rows[] = {
        {U"<a><b/>", 1, 7},
        {U"<a>\n<b/>", 2, 4},
        {U"<a>\r<b/>", 2, 4},
        {U"<a>\r\r\n\u0085\u2028\r\u0085\n<b/>", 7, 4},
        {U"<a>\u00E9\u4E2D\U0001F600<b/>", 1, 10},
        {U"<a x='\n'><b/>", 2, 6},
        {U"<!--\n\n--><a>x\n\n<?p\n?><b/>", 6, 6},
        {U"<a>&amp;&#10;<b/>", 1, 17},
        {U"<a><b\n>", 2, 1},
        {U"<!DOCTYPE a [\n<!ENTITY e '\n\n'>\n]><a>&e;<b/>", 5, 12},
    };
    for (const auto& row : rows) {
        for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-32BE"}) {
            for (const std::size_t chunk : {0, 1, 2, 3, 5}) {
                const std::string bytes = encode(encoding, row.input);
                const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
                ChunkBuf buffer(bytes, chunk == 0 ? bytes.size() : chunk);
                std::istream in(&buffer);
                parser->setInput(in, UnicodeString(), UnicodeString());
                do {
                    parser->next();
                } while (dumpEvent(*parser) != "S(b)");
                const std::string what = encode("UTF-8", row.input) + " " + encoding;
                EXPECT_EQ(parser->getLineNumber(), row.line) << what << " chunk " << chunk;
                EXPECT_EQ(parser->getColumnNumber(), row.column) << what << " chunk " << chunk;
            }
        }
    }
}

TEST(ParserDecoding, BlockBoundariesAreInvisible) {
    const std::u32string piece =
        U"\u00E9\u4E2D\U0001F600\r\n]]\r&#x4E2D;<![CDATA[\r\n]]]]><b c='\u4E2D\t&lt;'/>\U0001F600";
    const std::string shownPiece =
        "\\u{E9}\\u{4E2D}\\u{1F600}\\n]]\\n\\u{4E2D}\\n]]) S(b c=\\u{4E2D} <) E(b) T(\\u{1F600}";
    for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-32BE"}) {
        const std::size_t unit = encode(encoding, U"x").size();
        const std::size_t length = piece.size() + 12;
        for (std::size_t block = 512; block <= 65536; block *= 2) {
            for (std::size_t before = 0; before < length; ++before) {
                const std::size_t padding = block / unit - before;
                const std::string bytes = inRoot(encoding, std::u32string(padding, U'x') + piece);
                const Outcome outcome = run(bytes);
                if (outcome.summary() !=
                    "S(a) T(" + std::string(padding, 'x') + shownPiece + ") E(a) .") {
                    const std::string seen = outcome.summary();
                    ADD_FAILURE() << encoding << " " << padding << " before: ..."
                                  << seen.substr(std::min(seen.size(), padding));
                }
            }
        }
    }
}

TEST(ParserDecoding, RunsOfIdeographsCrossBlocks) {
    constexpr std::size_t BLOCK = 16384, LENGTH = 40;
    for (const char32_t middle : {U'\u4E2D', U'\u2028', U'\u0416', U'\U0001F600'}) {
        std::u32string text(LENGTH, U'\u65E5');
        text[LENGTH / 2] = middle;
        std::u32string expected = text;
        if (middle == U'\u2028') expected[LENGTH / 2] = U'\n';
        for (std::size_t before = 0; before <= 3 * LENGTH + 2; ++before) {
            const std::u32string padding(BLOCK - 3 - before, U'x');
            EXPECT_EQ(run(inRoot("UTF-8", padding + text)).events,
                      run(inRoot("UTF-32LE", padding + expected)).events)
                << std::hex << unsigned{middle} << " " << before;
        }
    }
}

TEST(ParserDecoding, MarksAreNoCharacters) {
    for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        const Outcome outcome = run(encode(encoding, U"\uFEFF<a></b>"));
        EXPECT_TRUE(outcome.message.ends_with("END_TAG, Line 1, Col 7.")) << outcome.message;
        EXPECT_EQ(run(inRoot(encoding, U"\uFEFFx")).events, "S(a) T(\\u{FEFF}x) E(a) .");
    }
}

}  // namespace
