// Byte-order marks, declared and given encodings, and the converters behind them.
#include "ParserFixture.h"

using namespace xmltest;

namespace {

std::string declared(const std::string& name, const std::string& rest) {
    return "<?xml version='1.0' encoding='" + name + "'?>" + rest;
}

std::u32string wide(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

struct EncodingRow {
    std::string what, bytes, given, summary;
    std::string encoding;  // "*" where it does not matter
};

void expectEncodings(const std::vector<EncodingRow>& rows, unsigned features = 0,
                     bool callback = false) {
    for (const EncodingRow& row : rows) {
        for (std::size_t chunk = 0; chunk <= 7; ++chunk) {
            const Outcome outcome = run(row.bytes, {.encoding = row.given,
                                                    .features = features,
                                                    .chunk = chunk,
                                                    .callback = callback});
            EXPECT_EQ(outcome.summary(), row.summary) << row.what << ", chunk " << chunk;
            if (row.encoding != "*") {
                EXPECT_EQ(outcome.encoding, row.encoding) << row.what << ", chunk " << chunk;
            }
        }
    }
}

const char32_t* const SAMPLE = U"<a x='\u00E9'>\u4E2D\U0001F600</a>";
const std::string SAMPLE_EVENTS = "S(a x=\\u{E9}) T(\\u{4E2D}\\u{1F600}) E(a) .";

TEST(ParserEncoding, FirstBytesTell) {
    std::vector<EncodingRow> rows;
    const struct {
        const char *encoding, *marked, *plain;
    } kinds[] = {{"UTF-8", "UTF-8", "UTF-8"},
                 {"UTF-16LE", "UTF-16", "UTF-16LE"},
                 {"UTF-16BE", "UTF-16", "UTF-16BE"},
                 {"UTF-32LE", "UTF-32", "UTF-32LE"},
                 {"UTF-32BE", "UTF-32", "UTF-32BE"}};
    for (const auto& kind : kinds) {
        const std::string text = encode(kind.encoding, SAMPLE);
        const std::string mark = encode(kind.encoding, U"\uFEFF");
        rows.push_back({"plain "s + kind.encoding, text, "", SAMPLE_EVENTS, kind.plain});
        rows.push_back({"marked "s + kind.encoding, mark + text, "", SAMPLE_EVENTS, kind.marked});
        rows.push_back({"marked and a line end "s + kind.encoding,
                        mark + encode(kind.encoding, U"\n<a/>\n"), "", "S(a) E(a) .", kind.marked});
        rows.push_back({"mark alone "s + kind.encoding, mark, "", ".", kind.marked});
    }
    for (const char* big : {"UTF-16BE", "UTF-32BE"}) {
        rows.push_back({"line end first "s + big, encode(big, U"\n<a/>"), "", "S(a) E(a) .", big});
    }
    rows.push_back({"line end first", "\n<a>\xC3\xA9</a>", "", "S(a) T(\\u{E9}) E(a) .", "UTF-8"});
    expectEncodings(rows);
}

TEST(ParserEncoding, DamagedMarksAreInvalid) {
    for (const std::string& start : {"\xEF"s, "\xEF\xBB"s, "\xEF\xBB<"s, "\xEF\xBF\xBF"s, "\xFE"s,
                                     "\xFE\xFE"s, "\xFF"s, "\xFF\xFF"s, "\xFE<"s, "\xFF<"s}) {
        expectInAllChunks(shown(fromUtf8(start)), start + "<a/>", {}, "!6196");
    }
}

TEST(ParserEncoding, EveryNameOfTheTable) {
    std::vector<EncodingRow> rows;
    for (const std::string name :
         {"ANSI_X3.4-1968", "ASCII", "ISO_646.IRV:1991", "US-ASCII", "ISO-8859-1", "LATIN1"}) {
        std::string lower = name;
        for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        const std::string document = "<a>\xE9\x80\xFF</a>";
        const std::string events = "S(a) T(\\u{E9}\\u{80}\\u{FF}) E(a) .";
        rows.push_back({name, declared(name, document), "", events, name});
        rows.push_back({lower, declared(" " + lower + " ", document), "", events, name});
        rows.push_back({"given " + name, document, lower, events, name});
    }
    rows.push_back(
        {"utf-8", declared("utf-8", "<a>\xC3\xA9</a>"), "", "S(a) T(\\u{E9}) E(a) .", "UTF-8"});
    expectEncodings(rows);
}

TEST(ParserEncoding, DeclarationsDoNotChangeTheWidth) {
    std::vector<EncodingRow> rows;
    const std::vector<std::string> names = {"UTF-8",           "UTF-16", "UTF-16BE", "UTF-32LE",
                                            "ISO-10646-UCS-4", "cp932",  "x-nope"};
    for (const char* kind : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        for (const std::string& name : names) {
            const std::string bytes = encode(kind, wide(declared(name, "")) + SAMPLE);
            rows.push_back({kind + " declared "s + name, bytes, "", SAMPLE_EVENTS, kind});
            rows.push_back(
                {kind + " given and declared "s + name, bytes, kind, SAMPLE_EVENTS, kind});
        }
    }
    // Nor do those of eight bits become wide.
    for (const char* name : {"UTF-16", "UCS-2", "UTF-16LE", "UTF-32"})
        rows.push_back(
            {name, declared(name, "<a>\xC3\xA9</a>"), "", "S(a) T(\\u{E9}) E(a) .", "UTF-8"});
    expectEncodings(rows);
}

TEST(ParserEncoding, MarksAgainstDeclarations) {
    const auto marked = [](const char* kind, const std::string& name) {
        return encode(kind, U"\uFEFF" + wide(declared(name, "<a/>")));
    };
    std::vector<EncodingRow> rows;
    const struct {
        const char *kind, *name, *summary, *encoding;
    } marks[] = {
        {"UTF-8", "utf-8", "S(a) E(a) .", "UTF-8"},
        {"UTF-8", "UTF-16", "!6201", "*"},
        {"UTF-8", "ISO-8859-1", "!6201", "*"},
        {"UTF-16LE", "UTF-16", "S(a) E(a) .", "UTF-16"},
        {"UTF-16LE", "UTF-16LE", "S(a) E(a) .", "UTF-16"},
        {"UTF-16LE", "Unicode", "S(a) E(a) .", "UTF-16"},
        {"UTF-16BE", "ISO-10646-UCS-2", "S(a) E(a) .", "UTF-16"},
        {"UTF-16BE", "UTF-16BE", "S(a) E(a) .", "UTF-16"},
        {"UTF-16LE", "UTF-16BE", "!6201", "*"},
        {"UTF-16LE", "UTF-32", "!6201", "*"},
        {"UTF-16LE", "UTF-8", "!6201", "*"},
        {"UTF-32LE", "UCS-4", "S(a) E(a) .", "UTF-32"},
        {"UTF-32BE", "UTF-32BE", "S(a) E(a) .", "UTF-32"},
        {"UTF-32BE", "UTF-32LE", "!6201", "*"},
        {"UTF-32BE", "US-ASCII", "!6201", "*"},
    };
    for (const auto& row : marks)
        rows.push_back({row.kind + " mark, "s + row.name, marked(row.kind, row.name), "",
                        row.summary, row.encoding});
    expectEncodings(rows);
}

TEST(ParserEncoding, GivenEncodings) {
    const std::string latin = "<a>\xE9</a>";
    const std::string latinEvents = "S(a) T(\\u{E9}) E(a) .";
    const std::string utf8 = "<a>\xC3\xA9</a>";
    expectEncodings({
        {"8-bit without a declaration", latin, "ISO-8859-1", latinEvents, "ISO-8859-1"},
        {"8-bit yields to UTF-8", declared("UTF-8", utf8), "ISO-8859-1", latinEvents, "UTF-8"},
        {"8-bit yields to a converter", declared("windows-1251", latin), "ISO-8859-1",
         "S(a) T(\\u{439}) E(a) .", "windows-1251"},
        {"UTF-8 yields to 8-bit", declared("ISO-8859-1", latin), "utf-8", latinEvents,
         "ISO-8859-1"},
        {"generic UTF-16 of unknown order, little", encode("UTF-16LE", SAMPLE), "UTF-16",
         SAMPLE_EVENTS, "*"},
        {"generic UTF-32 of unknown order, big", encode("UTF-32BE", SAMPLE), "UCS-4", SAMPLE_EVENTS,
         "*"},
        {"white space first", encode("UTF-16LE", U"\n<a/>"), " utf-16le ", "S(a) E(a) .",
         "UTF-16LE"},
        {"U+3C3C first, without markup", encode("UTF-16LE", U"<a>\u3C3C</a>"), "UTF-16LE",
         "S(a) T(\\u{3C3C}) E(a) .", "UTF-16LE"},
        {"converter", "<a>\x93\xFA\x96\x7B</a>", "cp932", "S(a) T(\\u{65E5}\\u{672C}) E(a) .",
         "cp932"},
        {"converter is not changed", declared("ISO-8859-1", "<a>\x93\xFA</a>"), "Shift_JIS",
         "S(a) T(\\u{65E5}) E(a) .", "Shift_JIS"},
        {"unknown", "<a/>", "x-nope", "!6197", "*"},
    });
}

TEST(ParserEncoding, ConvertersReadNationalEncodings) {
    const struct {
        const char *name, *bytes, *text;
    } rows[] = {
        {"cp932", "\x93\xFA\x96\x7B\x8C\xEA", "\\u{65E5}\\u{672C}\\u{8A9E}"},
        {"Shift_JIS", "\x83\x5C\x95\x5C\xB1", "\\u{30BD}\\u{8868}\\u{FF71}"},
        {"EUC-JP", "\xC6\xFC\xCB\xDC", "\\u{65E5}\\u{672C}"},
        {"ISO-2022-JP", "\x1B$BF|K\\\x1B(B.", "\\u{65E5}\\u{672C}."},
        {"Big5", "\xA4\xA4", "\\u{4E2D}"},
        {"KoreanKSC", "\xB0\xA1", "\\u{AC00}"},
        {"windows-1252", "\x80\xE9", "\\u{20AC}\\u{E9}"},
    };
    std::vector<EncodingRow> all;
    for (const auto& row : rows) {
        const std::string inner =
            "<!--"s + row.bytes + "-->\n<a x='" + row.bytes + "'>" + row.bytes + "</a>";
        all.push_back({row.name, declared(row.name, inner), "",
                       "S(a x="s + row.text + ") T(" + row.text + ") E(a) .", row.name});
    }
    expectEncodings(all);
}

TEST(ParserEncoding, NamesThatMayNotReachAConverter) {
    std::vector<EncodingRow> rows;
    for (const char* name : {"x-nope", "UTF-7", "ibm-37", "ibm-1047", "cp932,version=1", "cp932 x",
                             "cp932/x", "../cp932", "\xC3\xA9"}) {
        rows.push_back({name, declared(name, "<a/>"), "", "!6197", "*"});
    }
    expectEncodings(rows);
}

TEST(ParserEncoding, FeaturesForUnknownEncodings) {
    const std::string raw = "<a>\xE9</a>";
    expectEncodings({{"raw bytes", declared("x-nope", raw), "", "S(a) T(\\u{E9}) E(a) .", "*"},
                     {"raw bytes given", raw, "x-nope", "S(a) T(\\u{E9}) E(a) .", "*"},
                     {"converters as ever", declared("cp932", "<a>\xB1</a>"), "",
                      "S(a) T(\\u{FF71}) E(a) .", "cp932"}},
                    1u << RyXmlParser::RAW_UNKNOWN_ENCODING);
    expectEncodings(
        {{"converter name", declared("cp932", "<a/>"), "", "!6197", "*"},
         {"converter given", "<a/>", "cp932", "!6197", "*"},
         {"built-in name", declared("latin1", raw), "", "S(a) T(\\u{E9}) E(a) .", "LATIN1"}},
        1u << RyXmlParser::BUILTIN_ENCODINGS_ONLY);
}

TEST(ParserEncoding, ErrorsThatAreReportedLeaveTheSniffedEncoding) {
    const std::string e = "S(a) T(\\u{E9}) E(a) .";
    expectEncodings({{"unknown", declared("x-nope", "<a>\xC3\xA9</a>"), "", "6197 | " + e, "UTF-8"},
                     {"conflict", "\xEF\xBB\xBF" + declared("UTF-16", "<a>\xC3\xA9</a>"), "",
                      "6201 | " + e, "UTF-8"}},
                    0, true);
}

TEST(ParserEncoding, ShortNamesOfOurOwnOutput) {
    const std::string e = "S(a) T(\\u{E9}) E(a) .";
    expectEncodings({
        {"U+00AD", declared("\xC2\xAD", "<a>\xC3\xA9</a>"), "", e, "*"},
        {"U+008B", declared("\xC2\x8B", "<a>\xC3\xA9</a>"), "", e, "*"},
        {"&#139;", declared("&#139;", "<a>\xB1</a>"), "", "S(a) T(\\u{FF71}) E(a) .", "*"},
    });
}

}  // namespace
