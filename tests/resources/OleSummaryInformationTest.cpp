// Property sets: values, code pages, byte orders, dictionaries, hyperlinks, and broken streams.
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include <bit>
#include <limits>

#include "tests/Text.h"
#include "tests/resources/OleFixture.h"
#include "tests/resources/PropertySetWriter.h"

namespace RynCommon {
namespace {

using test::OleWriter;
using test::OpenFile;
using test::PropertySetWriter;

/// A compound file with a summary information stream.
std::string fileOf(std::string summary, std::string documentSummary = "") {
    OleWriter writer;
    writer.addStream(0, u"\u0005SummaryInformation", std::move(summary));
    if (!documentSummary.empty())
        writer.addStream(0, u"\u0005DocumentSummaryInformation", std::move(documentSummary));
    return writer.write().bytes();
}

constexpr std::size_t ID = 2;

TEST(OleSummaryInformation, ServesTypes) {
    for (const bool bigEndian : {false, true}) {
        const PropertySetWriter w(bigEndian);
        const auto bits = [](double number) { return std::bit_cast<std::uint64_t>(number); };
        const auto bits32 = [](float number) { return std::bit_cast<std::uint32_t>(number); };
        const std::string many = w.number(2, 4);
        const struct {
            const char* what;
            std::size_t type;
            std::string bytes;
            int basic;  ///< result of getProperty(); getPropertyAny() gives no less
            int any;
            RyValueType kind;
            std::string text;
        } rows[] = {
            {"int16", 2, w.number(0xFFFE, 2), 1, 1, RYVALUE_INTEGER, "-2"},
            {"int32", 3, w.number(0x80000000, 4), 1, 1, RYVALUE_INTEGER, "-2147483648"},
            {"narrow", 30, w.narrow("text"), 1, 1, RYVALUE_STRING, "text"},
            {"narrow, NUL", 30, w.narrow(std::string("te\0xt", 5)), 1, 1, RYVALUE_STRING, "te"},
            {"narrow, empty", 30, w.narrow(""), 1, 1, RYVALUE_STRING, ""},
            {"narrow, long", 30, w.narrow(std::string(3000, 'x')), 1, 1, RYVALUE_STRING,
             std::string(3000, 'x')},
            {"empty type", 0, "", 0, 0, RYVALUE_NULL, ""},
            {"null type", 1, "", 0, 0, RYVALUE_NULL, ""},
            {"vector of narrow", 0x101E, many + w.narrow("one") + w.narrow("two"), 1, 1,
             RYVALUE_STRING, "one"},
            {"vector of int32", 0x1003, many + w.number(5, 4), 1, 1, RYVALUE_INTEGER, "5"},
            {"empty vector", 0x101E, w.number(0, 4), 0, 0, RYVALUE_NULL, ""},
            {"wide", 31, w.wide(u"w\u00EFde\U0001F600\0x"), 0, 1, RYVALUE_STRING,
             "w\xC3\xAF"
             "de\xF0\x9F\x98\x80"},
            {"vector of wide", 0x101F, many + w.wide(u"a") + w.wide(u"b"), 0, 1, RYVALUE_STRING,
             "a"},
            {"true", 11, w.number(0xFFFF, 2), 0, 1, RYVALUE_NAME, "true"},
            {"false", 11, w.number(0, 2), 0, 1, RYVALUE_NAME, "false"},
            {"uint32", 19, w.number(0x7FFFFFFF, 4), 0, 1, RYVALUE_INTEGER, "2147483647"},
            {"large uint32", 19, w.number(0x80000000, 4), 0, 1, RYVALUE_REAL, "2.14748e+09"},
            {"int64", 20, w.number(std::size_t(-7), 8), 0, 1, RYVALUE_INTEGER, "-7"},
            {"large int64", 20, w.number(std::size_t(-3'000'000'000), 8), 0, 1, RYVALUE_REAL,
             "-3e+09"},
            {"uint64", 21, w.number(9, 8), 0, 1, RYVALUE_INTEGER, "9"},
            {"large uint64", 21, w.number(std::size_t(-1), 8), 0, 1, RYVALUE_REAL, "1.84467e+19"},
            {"real32", 4, w.number(bits32(1.5F), 4), 0, 1, RYVALUE_REAL, "1.5"},
            {"real64", 5, w.number(bits(-0.25), 8), 0, 1, RYVALUE_REAL, "-0.25"},
            {"no time", 64, w.number(0, 8), 0, 1, RYVALUE_STRING, "1601-01-01T00:00:00Z"},
            {"leap day", 64, w.number(125'963'423'990'000'000, 8), 0, 1, RYVALUE_STRING,
             "2000-02-29T23:59:59Z"},
            {"a moment", 64, w.number(133'590'402'019'999'999, 8), 0, 1, RYVALUE_STRING,
             "2024-05-01T12:30:01Z"},
            {"end of time", 64, w.number(std::size_t(-1), 8), 0, 1, RYVALUE_STRING,
             "60056-05-28T05:36:10Z"},
            {"blob", 65, w.narrow("blob"), 0, 0, RYVALUE_NULL, ""},
            {"unknown type", 0xFFFFFFFF, "", -1, -1, RYVALUE_NULL, ""},
            {"narrow too long", 30, w.number(5, 4) + "text", -1, -1, RYVALUE_NULL, ""},
            {"narrow of 2^32-1", 30, w.number(0xFFFFFFFF, 4) + "text", -1, -1, RYVALUE_NULL, ""},
            {"wide of 2^31", 31, w.number(0x80000000, 4) + "text", 0, -1, RYVALUE_NULL, ""},
            {"int32 cut", 3, "", -1, -1, RYVALUE_NULL, ""},
            {"vector without a count", 0x1003, "", -1, -1, RYVALUE_NULL, ""},
        };
        for (const auto& row : rows) {
            PropertySetWriter writer(bigEndian);
            writer.section().add(ID, row.type, row.bytes);
            OpenFile document(fileOf(writer.write()));
            OleSummaryInformation information;
            ASSERT_EQ(information.initSummaryInformation(&document), 1) << row.what;
            RyValue basic;
            EXPECT_EQ(information.getProperty(ID, basic), row.basic) << row.what;
            EXPECT_EQ(basic.getValueType(), row.basic == 1 ? row.kind : RYVALUE_NULL) << row.what;
            RyValue any;
            EXPECT_EQ(information.getPropertyAny(ID, any), row.any) << row.what;
            EXPECT_EQ(any.getValueType(), row.kind) << row.what;
            EXPECT_EQ(s(any.toString()), row.text) << row.what << bigEndian;
        }
    }
}

TEST(OleSummaryInformation, ServesTheIdsOfTheSummary) {
    PropertySetWriter writer;
    writer.section();
    for (std::size_t id = 1; id <= 25; ++id) writer.add(id, 3, writer.number(100 + id, 4));
    OpenFile document(fileOf(writer.write()));
    OleSummaryInformation information;
    ASSERT_EQ(information.initSummaryInformation(&document), 1);
    const std::string served = "1 2 3 4 5 6 7 8 9 14 15 16 18 19 ";
    std::string answered;
    for (unsigned long id = 0; id <= 26; ++id) {
        RyValue value;
        if (information.getProperty(id, value) == 1) answered += std::to_string(id) + " ";
        EXPECT_EQ(information.getPropertyAny(id, value), id >= 1 && id <= 25 ? 1 : -1) << id;
    }
    EXPECT_EQ(answered, served);
    RyValue value;
    EXPECT_EQ(information.getPropertyAny((1UL << 32) + 2, value), -1);
    EXPECT_EQ(information.getPropertyAny(static_cast<unsigned long>(-1), value), -1);
}

TEST(OleSummaryInformation, DecodesTheCodePage) {
    const struct {
        std::size_t type, codePage;
        const char* name;
        std::string bytes;
        const char16_t* text;
    } rows[] = {
        {0, 0, "cp932", "\x93\xFA\x96{\x81`", u"\u65E5\u672C\uFF5E"},
        {2, 932, "cp932", "\\\x93\xFA", u"\\\u65E5"},
        {2, 1252, "cp1252", "\x80\xE9", u"\u20AC\u00E9"},
        {3, 1251, "cp1251", "\xCF", u"\u041F"},
        {2, 65001, "UTF-8", "\xE2\x82\xAC", u"\u20AC"},
        {3, 65001, "UTF-8", "\xE2\x82\xAC", u"\u20AC"},
        {2, 936, "cp936", "\xD6\xD0\x80", u"\u4E2D\u20AC"},
        {2, 949, "cp949", "\xC7\xD1\x81\x41", u"\uD55C\uAC02"},
        {2, 950, "cp950", "\xA4\xA4", u"\u4E2D"},
        {2, 874, "cp874", "\xA1", u"\u0E01"},
        {2, 437, "cp437", "\x82", u"\u00E9"},
        {2, 850, "cp850", "\x9C", u"\u00A3"},
        {2, 10000, "cp10000", "\x8E", u"\u00E9"},
        {2, 20127, "cp20127", "ab", u"ab"},
        {2, 28592, "cp28592", "\xB1", u"\u0105"},
        {2, 28605, "cp28605", "\xA4", u"\u20AC"},
        {2, 54936, "cp54936", "\x81\x30\x81\x30", u"\u0080"},
        {2, 51932, "cp51932", "\xC6\xFC", u"\u65E5"},
        {2, 50220, "cp50220", "\x1B$BF|\x1B(B", u"\u65E5"},
        {2, 1200, "cp1200", std::string("a\0\xE5\x65", 4), u"a\u65E5"},
        {2, 0, "cp0", "\x80", u"\u20AC"},
        {2, 65000, "cp65000", "+AGE-", u"+AGE-"},
        {2, 37, "cp37", "\xC1", u"\u00C1"},
        {2, 9999, "cp9999", "\x80", u"\u20AC"},
        {3, 0xFFFFFFFF, "cp-1", "\x80", u"\u20AC"},
        {30, 1, "cp932", "\x93\xFA", u"\u65E5"},
        {19, 1252, "cp932", "\x93\xFA", u"\u65E5"},
    };
    for (const auto& row : rows) {
        PropertySetWriter writer;
        writer.section().add(2, 30, writer.narrow(row.bytes + std::string("\0x\0", 3)));
        if (row.type != 0) writer.add(1, row.type, writer.number(row.codePage, 4));
        // Both streams take the code page from their own property.
        OpenFile document(fileOf(writer.write(), writer.write()));
        OleSummaryInformation information;
        for (const bool ofDocument : {false, true}) {
            ASSERT_EQ(ofDocument ? information.initDocumentSummaryInformation(&document)
                                 : information.initSummaryInformation(&document),
                      1);
            EXPECT_EQ(information.getCodePage(), UnicodeString(row.name));
            RyValue value;
            ASSERT_EQ(information.getProperty(2, value), 1) << row.name;
            // Two NULs end UTF-16, too.
            const UnicodeString text = value.toString();
            EXPECT_EQ(text.startsWith(row.text), true) << row.name << " " << s(value.toString());
            if (row.codePage != 1200) {
                EXPECT_EQ(text, row.text) << row.name;
            }
        }
    }
}

TEST(OleSummaryInformation, AnOpenedCodePageIsGivenUpWithItsStream) {
    PropertySetWriter first;
    first.section().add(1, 2, first.number(1252, 2)).add(2, 30, first.narrow("\x80"));
    PropertySetWriter second;
    second.section().add(2, 30, second.narrow("\x93\xFA"));
    OpenFile document(fileOf(first.write(), second.write()));
    OleSummaryInformation information;
    RyValue value;
    EXPECT_EQ(information.getProperty(2, value), -1);
    ASSERT_EQ(information.initSummaryInformation(&document), 1);
    EXPECT_EQ(information.getProperty(2, value), 1);
    EXPECT_EQ(s(value.toString()), "\xE2\x82\xAC");
    ASSERT_EQ(information.initDocumentSummaryInformation(&document), 1);
    EXPECT_EQ(information.getProperty(2, value), 1);
    EXPECT_EQ(s(value.toString()), "\xE6\x97\xA5");
    EXPECT_EQ(information.initSummaryInformation(nullptr), -1);
    EXPECT_EQ(information.getProperty(2, value), -1);
    OleCompFile closed;
    EXPECT_EQ(information.initSummaryInformation(&closed), -1);
}

TEST(OleSummaryInformation, ReadsHyperLinks) {
    const std::vector<std::u16string> links = {u"http://a.example/", u"", u"#pl\u00E4ce", u"odd"};
    for (const bool bigEndian : {false, true}) {
        const PropertySetWriter w(bigEndian);
        const std::string good = w.hyperLinks(links);
        const std::string names =
            w.dictionary({{5, "other"}, {9, std::string("_PID_HLINKS\0", 12)}});
        const std::string element = w.number(31, 4);
        const struct {
            const char* what;
            std::string names;
            std::size_t id, type;
            std::string blob;
            int count;
        } rows[] = {
            {"links", names, 9, 65, good, 4},
            {"no name", w.dictionary({{9, "_PID_HLINK"}}), 9, 65, good, 0},
            {"no property", names, 10, 65, good, -1},
            {"no blob", names, 9, 30, good, -1},
            {"no links", names, 9, 65, w.narrow(w.number(0, 4)), 0},
            {"no count", names, 9, 65, w.narrow("xx"), -1},
            {"blob too long", names, 9, 65, w.number(good.size() + 40, 4) + good.substr(4), -1},
            {"count too large", names, 9, 65, w.narrow(w.number(0xFFFFFFFF, 4) + good.substr(8)),
             -1},
            {"one element more", names, 9, 65, w.narrow(w.number(9, 4) + good.substr(8)), -1},
            {"another type", names, 9, 65,
             w.narrow(w.number(1, 4) + w.number(30, 4) + w.narrow("abcd")), -1},
            {"text out of the blob", names, 9, 65,
             w.narrow(w.number(1, 4) + element + w.number(3, 4) + "abcd") + "efgh", -1},
            {"text of 2^31", names, 9, 65,
             w.narrow(w.number(1, 4) + element + w.number(0x80000000, 4) + "abcd"), -1},
            {"last one without padding", names, 9, 65,
             w.narrow(w.number(1, 4) + element + w.number(1, 4) + w.number('x', 2)), 1},
            {"ends at the NUL", names, 9, 65,
             w.narrow(w.number(1, 4) + element + w.wide(std::u16string(u"x\0y\0", 4))), 1},
        };
        for (const auto& row : rows) {
            PropertySetWriter writer(bigEndian);
            writer.section().add(2, 3, writer.number(1, 4));
            writer.section().add(0, 0, row.names).add(row.id, row.type, row.blob);
            OpenFile document(fileOf("", writer.write()));
            OleSummaryInformation information;
            std::vector<UnicodeString> found(1, u"kept");
            EXPECT_EQ(information.getHyperLinks(found), -1) << "before";
            ASSERT_EQ(information.initDocumentSummaryInformation(&document), 1) << row.what;
            EXPECT_EQ(information.getHyperLinks(found), row.count) << row.what;
            ASSERT_EQ(found.size(), 1U + static_cast<unsigned>(std::max(row.count, 0)));
            EXPECT_EQ(found[0], UnicodeString(u"kept"));
            if (row.count == 1) {
                EXPECT_EQ(found[1], UnicodeString(u"x")) << row.what;
            }
            for (std::size_t i = 0; row.count == 4 && i < 4; ++i)
                EXPECT_EQ(found[i + 1], UnicodeString(links[i].c_str())) << bigEndian;
            RyValue value;
            EXPECT_EQ(information.getPropertyAny(row.id, value), -1) << "of the section with names";
        }
    }
}

TEST(OleSummaryInformation, ReadsDictionariesInUtf16AndUpToTheNextProperty) {
    const PropertySetWriter w;
    const std::string links = w.hyperLinks({u"x"});
    std::string wideNames = w.number(2, 4);
    for (const std::u16string& name :
         {std::u16string(u"odd"), std::u16string(u"_PID_HLINKS\0", 12)}) {
        wideNames += w.number(name == u"odd" ? 4 : 9, 4) + w.wide(name);
        wideNames.resize((wideNames.size() + 3) / 4 * 4);
    }
    const std::string running = w.number(2, 4) + w.number(4, 4) + w.narrow("abcd") +
                                w.number(9, 4) + w.number(12, 4) + "_PID_HLINKS";
    const struct {
        const char* what;
        std::size_t codePage;
        std::string names;
        int links;
    } rows[] = {
        {"UTF-16", 1200, wideNames, 1},
        {"bytes", 1252, wideNames, 0},
        {"a name that runs into the next property", 1252, running.substr(0, running.size() - 4), 0},
        {"a name that just fits", 1252, running + std::string(1, '\0'), 1},
    };
    for (const auto& row : rows) {
        PropertySetWriter writer;
        writer.section();
        writer.add(0, 0, row.names).add(1, 2, w.number(row.codePage, 2)).add(9, 65, links);
        OpenFile document(fileOf("", writer.write()));
        OleSummaryInformation information;
        ASSERT_EQ(information.initDocumentSummaryInformation(&document), 1) << row.what;
        std::vector<UnicodeString> found;
        EXPECT_EQ(information.getHyperLinks(found), row.links) << row.what;
    }
}

std::string makeSample() {
    PropertySetWriter writer;
    writer.section().add(1, 2, writer.number(1252, 2)).add(2, 30, writer.narrow("title"));
    writer.add(12, 64, writer.number(133'590'402'019'999'999, 8));
    writer.section()
        .add(0, 0, writer.dictionary({{2, "_PID_HLINKS"}, {3, "b"}}))
        .add(2, 65, writer.hyperLinks({u"link", u"other"}));
    return writer.write();
}

void readEverything(const std::string& set) {
    OpenFile document(fileOf(set, set));
    OleSummaryInformation information;
    const int result = information.initDocumentSummaryInformation(&document);
    EXPECT_TRUE(result == 1 || result == -1);
    for (unsigned long id = 0; id < 20; ++id) {
        RyValue value;
        information.getProperty(id, value);
        information.getPropertyAny(id, value);
    }
    std::vector<UnicodeString> links;
    EXPECT_LE(information.getHyperLinks(links), 2);
    EXPECT_LE(links.size(), 2U);
}

TEST(OleSummaryInformation, BrokenStreamsAreMalformed) {
    const std::string sample = makeSample();
    for (std::size_t size = 1; size < sample.size(); ++size) readEverything(sample.substr(0, size));
    for (std::size_t offset = 0; offset + 4 <= sample.size(); offset += 2) {
        for (const std::size_t number :
             {0UL, 1UL, 2UL, 3UL, 8UL, 100UL, 0x7FFFFFFFUL, 0x80000000UL, 0xFFFFFFFFUL}) {
            test::ByteSink sink(false);
            sink.bytes = sample;
            sink.set(offset, number, 4);
            readEverything(sink.bytes);
        }
    }
    const struct {
        const char* what;
        std::size_t offset, size, value;
        int result;
    } rows[] = {
        {"as written", 2, 2, 0, 1},
        {"no byte order mark", 0, 2, 0, -1},
        {"sections 2^32-1", 24, 4, 0xFFFFFFFF, -1},
        {"no sections", 24, 4, 0, 1},
        {"section outside", 44, 4, 0xFFFFFFF0, -1},
        {"size of a section", 68, 4, 0xFFFFFFFF, 1},
        {"properties 2^32-1", 72, 4, 0xFFFFFFFF, -1},
        {"property outside", 80, 4, 0xFFFFFFF0, -1},
    };
    for (const auto& row : rows) {
        test::ByteSink sink(false);
        sink.bytes = sample;
        sink.set(row.offset, row.value, row.size);
        OpenFile document(fileOf(sink.bytes));
        OleSummaryInformation information;
        EXPECT_EQ(information.initSummaryInformation(&document), row.result) << row.what;
    }
    OpenFile empty(fileOf(""));
    EXPECT_EQ(OleSummaryInformation().initSummaryInformation(&empty), -1);
}

/// Sections that share one long table claim more than the stream has.
TEST(OleSummaryInformation, SharedTablesAreMalformed) {
    test::ByteSink sink(false);
    constexpr std::size_t SECTIONS = 2000;
    constexpr std::size_t PROPERTIES = 5000;
    sink.put16(0xFFFE);
    sink.bytes.resize(24);
    sink.put32(SECTIONS);
    for (std::size_t i = 0; i < SECTIONS; ++i) {
        sink.bytes.resize(sink.bytes.size() + 16);
        sink.put32(28 + 20 * SECTIONS);
    }
    sink.put32(0);
    sink.put32(PROPERTIES);
    for (std::size_t i = 0; i < PROPERTIES; ++i) sink.put64(0x0000000800000002);
    const std::string shared = sink.bytes;
    sink.set(24, 1, 4);
    OpenFile document(fileOf(shared));
    OpenFile single(fileOf(sink.bytes));
    OleSummaryInformation information;
    EXPECT_EQ(information.initSummaryInformation(&document), -1);
    EXPECT_EQ(information.initSummaryInformation(&single), 1);
}

TEST(OlePropertySet, TellsWhatIsThere) {
    PropertySetWriter writer;
    writer.section().add(1, 2, writer.number(65001, 2)).add(2, 30, writer.narrow("T\xC3\xAF\0"));
    writer.add(4, 0x101E, writer.number(1, 4) + writer.narrow("Author")).add(3, 64, "12345678");
    OpenFile document(fileOf(writer.write()));
    OlePropertySet set;
    EXPECT_TRUE(set.init(&document));
    EXPECT_EQ(set.getTitle(), UnicodeString(u"T\u00EF"));
    EXPECT_TRUE(set.getSubject().isEmpty());
    EXPECT_EQ(set.getAuthor(), UnicodeString(u"Author"));
    EXPECT_TRUE(set.getKeywords().isEmpty());
    OpenFile other(fileOf("no property set"));
    EXPECT_FALSE(set.init(&other));
    EXPECT_TRUE(set.getTitle().isEmpty());
    EXPECT_FALSE(set.init(nullptr));
}

TEST(OleSummaryInformation, SizesCanBeLimited) {
    PropertySetWriter w;
    w.section().add(1, 2, w.number(1252, 2)).add(ID, 30, w.narrow("title"));
    w.section().add(0, 0, w.dictionary({{2, "name"}})).add(2, 3, w.number(1, 4));
    const std::string set = w.write();
    const auto size = static_cast<std::uint32_t>(set.size());
    const std::uint32_t items = 7;  // two sections, four properties, a name
    const struct {
        const char* what;
        OleLimits limits;
        int result;
    } rows[] = {
        {"no limit", {}, 1},
        {"bytes reached", {.propertySetBytes = size}, 1},
        {"bytes exceeded", {.propertySetBytes = size - 1}, -1},
        {"items reached", {.properties = items}, 1},
        {"names exceeded", {.properties = items - 1}, -1},
        {"properties exceeded", {.properties = 3}, -1},
        {"sections exceeded", {.properties = 1}, -1},
    };
    for (const auto& row : rows) {
        OpenFile document(fileOf(set));
        OleSummaryInformation own;
        own.setLimits(row.limits);
        EXPECT_EQ(own.initSummaryInformation(&document), row.result) << row.what;
        document.setLimits(row.limits);
        OleSummaryInformation followsFile;
        EXPECT_EQ(followsFile.initSummaryInformation(&document), row.result) << row.what;
        OlePropertySet properties;
        EXPECT_EQ(properties.init(&document), row.result == 1) << row.what;
    }
}

/// The readers that derived classes use.
class Reader : public OleSummaryInformation {
public:
    void check() {
        std::uint16_t word = 0;
        std::uint32_t dword = 0;
        std::uint32_t sections = 0;
        OLE_CLSID id;
        ASSERT_TRUE(getPropHeader(sections));
        EXPECT_EQ(sections, 2U);
        ASSERT_TRUE(getCLSID(id) && getDWORD(dword));
        EXPECT_EQ(id.data1, 0xF29F85E0U);
        EXPECT_EQ(dword, 68U);
        ASSERT_TRUE(checkEndian() && getWORD(word) && getDWORD(dword));
        EXPECT_EQ(dword, 0x00020006U);
        unsigned char bytes[4] = {};
        ASSERT_TRUE(checkEndian() && getWORD(word) && getReverse(bytes, 4));
        EXPECT_EQ(bytes[3], 6);
        UnicodeString text(u"kept");
        EXPECT_FALSE(getWSTR(text, 0x80000000));
        EXPECT_EQ(text, UnicodeString(u"kept"));
        ASSERT_TRUE(checkEndian() && getWSTR(text, 3));
        EXPECT_EQ(text, UnicodeString(u"\0\u0006\u0002", 3));
    }
};

TEST(OleSummaryInformation, GivesItsReadersToDerivedClasses) {
    OpenFile document(fileOf(makeSample()));
    Reader reader;
    ASSERT_EQ(reader.initSummaryInformation(&document), 1);
    reader.check();
}

}  // namespace
}  // namespace RynCommon
