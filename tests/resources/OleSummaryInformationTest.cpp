// Property sets: values, code pages, byte orders, dictionaries, hyperlinks, and broken streams.
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <tuple>

#include "tests/Text.h"
#include "tests/resources/OleFixture.h"
#include "tests/resources/PropertySetWriter.h"

namespace RynCommon {
namespace {

using namespace test;
using namespace std::string_literals;

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
        const std::tuple<const char*, std::size_t, std::string, int, int, RyValueType, std::string>
            rows[] = {
                {"int16", 2, w.number(0xFFFE, 2), 1, 1, RYVALUE_INTEGER, "-2"},
                {"int32", 3, w.number(0x80000000, 4), 1, 1, RYVALUE_INTEGER, "-2147483648"},
                {"narrow", 30, w.narrow("text"), 1, 1, RYVALUE_STRING, "text"},
                {"narrow, NUL", 30, w.narrow("te\0xt"s), 1, 1, RYVALUE_STRING, "te"},
                {"empty type", 0, "", 0, 0, RYVALUE_NULL, ""},
                {"vector of narrow", 0x101E, many + w.narrow("one") + w.narrow("two"), 1, 1,
                 RYVALUE_STRING, "one"},
                {"empty vector", 0x101E, w.number(0, 4), 0, 0, RYVALUE_NULL, ""},
                {"wide", 31, w.wide(u"\u00EF\U0001F600\0x"s), 0, 1, RYVALUE_STRING,
                 "\xC3\xAF\xF0\x9F\x98\x80"},
                {"vector of wide", 0x101F, many + w.wide(u"a") + w.wide(u"b"), 0, 1, RYVALUE_STRING,
                 "a"},
                {"true", 11, w.number(0xFFFF, 2), 0, 1, RYVALUE_NAME, "true"},
                {"false", 11, w.number(0, 2), 0, 1, RYVALUE_NAME, "false"},
                {"uint32", 19, w.number(0x7FFFFFFF, 4), 0, 1, RYVALUE_INTEGER, "2147483647"},
                {"large uint32", 19, w.number(0x80000000, 4), 0, 1, RYVALUE_REAL, "2.14748e+09"},
                {"int64", 20, w.number(std::size_t(-7), 8), 0, 1, RYVALUE_INTEGER, "-7"},
                {"large int64", 20, w.number(std::size_t(-3'000'000'000), 8), 0, 1, RYVALUE_REAL,
                 "-3e+09"},
                {"large uint64", 21, w.number(std::size_t(-1), 8), 0, 1, RYVALUE_REAL,
                 "1.84467e+19"},
                {"real32", 4, w.number(bits32(1.5F), 4), 0, 1, RYVALUE_REAL, "1.5"},
                {"real64", 5, w.number(bits(-0.25), 8), 0, 1, RYVALUE_REAL, "-0.25"},
                {"no time", 64, w.number(0, 8), 0, 1, RYVALUE_STRING, "1601-01-01T00:00:00Z"},
                {"a moment", 64, w.number(133'590'402'019'999'999, 8), 0, 1, RYVALUE_STRING,
                 "2024-05-01T12:30:01Z"},
                {"end of time", 64, w.number(std::size_t(-1), 8), 0, 1, RYVALUE_STRING,
                 "60056-05-28T05:36:10Z"},
                {"blob", 65, w.narrow("blob"), 0, 0, RYVALUE_NULL, ""},
                {"unknown type", 0xFFFFFFFF, "", -1, -1, RYVALUE_NULL, ""},
                {"narrow too long", 30, w.number(5, 4) + "text", -1, -1, RYVALUE_NULL, ""},
                {"wide of 2^31", 31, w.number(0x80000000, 4) + "text", 0, -1, RYVALUE_NULL, ""},
                {"int32 cut", 3, "", -1, -1, RYVALUE_NULL, ""},
            };
        for (const auto& [what, type, bytes, small, all, kind, text] : rows) {
            PropertySetWriter writer(bigEndian);
            writer.section().add(ID, type, bytes);
            OpenFile document(fileOf(writer.write()));
            OleSummaryInformation information;
            ASSERT_EQ(information.initSummaryInformation(&document), 1) << what;
            RyValue basic;
            EXPECT_EQ(information.getProperty(ID, basic), small) << what;
            EXPECT_EQ(basic.getValueType(), small == 1 ? kind : RYVALUE_NULL) << what;
            RyValue any;
            EXPECT_EQ(information.getPropertyAny(ID, any), all) << what;
            EXPECT_EQ(any.getValueType(), kind) << what;
            EXPECT_EQ(s(any.toString()), text) << what << bigEndian;
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
    std::string answered;
    for (unsigned long id = 0; id <= 26; ++id) {
        RyValue value;
        if (information.getProperty(id, value) == 1) answered += std::to_string(id) + " ";
        EXPECT_EQ(information.getPropertyAny(id, value), id >= 1 && id <= 25 ? 1 : -1) << id;
    }
    EXPECT_EQ(answered, "1 2 3 4 5 6 7 8 9 14 15 16 18 19 ");
    RyValue value;
    EXPECT_EQ(information.getPropertyAny((1UL << 32) + 2, value), -1);
}

TEST(OleSummaryInformation, DecodesTheCodePage) {
    const std::tuple<std::size_t, std::size_t, const char*, std::string, const char16_t*> rows[] = {
        {0, 0, "cp932", "\x93\xFA\x96{\x81`", u"\u65E5\u672C\uFF5E"},
        {2, 932, "cp932", "\\\x93\xFA", u"\\\u65E5"},
        {3, 1251, "cp1251", "\xCF", u"\u041F"},
        {2, 65001, "UTF-8", "\xE2\x82\xAC", u"\u20AC"},
        {2, 936, "cp936", "\xD6\xD0\x80", u"\u4E2D\u20AC"},
        {2, 437, "cp437", "\x82", u"\u00E9"},
        {2, 10000, "cp10000", "\x8E", u"\u00E9"},
        {2, 28592, "cp28592", "\xB1", u"\u0105"},
        {2, 54936, "cp54936", "\x81\x30\x81\x30", u"\u0080"},
        {2, 0, "cp0", "\x80", u"\u20AC"},
        {2, 65000, "cp65000", "+AGE-", u"+AGE-"},
        {2, 37, "cp37", "\xC1", u"\u00C1"},
        {3, 0xFFFFFFFF, "cp-1", "\x80", u"\u20AC"},
        {30, 1, "cp932", "\x93\xFA", u"\u65E5"},
        {19, 1252, "cp932", "\x93\xFA", u"\u65E5"},
    };
    for (const auto& [type, codePage, name, bytes, text] : rows) {
        PropertySetWriter writer;
        writer.section().add(2, 30, writer.narrow(bytes + "\0x"s));
        if (type != 0) writer.add(1, type, writer.number(codePage, 4));
        // Both streams take the code page from their own property.
        OpenFile document(fileOf(writer.write(), writer.write()));
        OleSummaryInformation information;
        for (const bool ofDocument : {false, true}) {
            ASSERT_EQ(ofDocument ? information.initDocumentSummaryInformation(&document)
                                 : information.initSummaryInformation(&document),
                      1);
            EXPECT_EQ(information.getCodePage(), UnicodeString(name));
            RyValue value;
            ASSERT_EQ(information.getProperty(2, value), 1) << name;
            EXPECT_EQ(value.toString(), text) << name << " " << s(value.toString());
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
    const auto title = [&information] {
        RyValue value;
        return information.getProperty(2, value) == 1 ? s(value.toString()) : NONE;
    };
    EXPECT_EQ(title(), NONE);
    ASSERT_EQ(information.initSummaryInformation(&document), 1);
    EXPECT_EQ(title(), "\u20AC");
    ASSERT_EQ(information.initDocumentSummaryInformation(&document), 1);
    EXPECT_EQ(title(), "\u65E5");
    EXPECT_EQ(information.initSummaryInformation(nullptr), -1);
    EXPECT_EQ(title(), NONE);
    OleCompFile closed;
    EXPECT_EQ(information.initSummaryInformation(&closed), -1);
}

TEST(OleSummaryInformation, ReadsHyperLinks) {
    const std::vector<UnicodeString> kept{u"kept"};
    const std::vector<UnicodeString> keptAndOne{u"kept", u"x"};
    for (const bool bigEndian : {false, true}) {
        const PropertySetWriter w(bigEndian);
        const std::string good = w.hyperLinks({u"x"});
        const std::string names = w.dictionary({{5, "other"}, {9, "_PID_HLINKS"}});
        const std::string element = w.number(1, 4) + w.number(31, 4);
        const std::string running = w.number(1, 4) + w.number(9, 4) + w.number(12, 4) + "_PID_HL";
        const std::tuple<const char*, std::string, std::size_t, std::size_t, std::string, int>
            rows[] = {
                {"links", names, 9, 65, good, 1},
                {"no name", w.dictionary({{9, "_PID_HLINK"}}), 9, 65, good, 0},
                {"no property", names, 10, 65, good, -1},
                {"no blob", names, 9, 30, good, -1},
                {"blob too long", names, 9, 65, w.number(good.size() + 40, 4) + good.substr(4), -1},
                {"count too large", names, 9, 65,
                 w.narrow(w.number(0xFFFFFFFF, 4) + good.substr(8)), -1},
                {"another type", names, 9, 65,
                 w.narrow(w.number(1, 4) + w.number(30, 4) + w.narrow("abcd")), -1},
                {"text out of the blob", names, 9, 65,
                 w.narrow(element + w.number(3, 4) + "abcd") + "efgh", -1},
                {"last one without padding", names, 9, 65,
                 w.narrow(element + w.number(1, 4) + w.number('x', 2)), 1},
                {"ends at the NUL", names, 9, 65, w.narrow(element + w.wide(u"x\0y\0"s)), 1},
                {"a name that runs into the next property", running, 9, 65, good, 0},
            };
        for (const auto& [what, dictionary, id, type, blob, result] : rows) {
            PropertySetWriter writer(bigEndian);
            writer.section().add(2, 3, writer.number(1, 4));
            writer.section().add(0, 0, dictionary).add(id, type, blob);
            OpenFile document(fileOf("", writer.write()));
            OleSummaryInformation information;
            ASSERT_EQ(information.initDocumentSummaryInformation(&document), 1) << what;
            std::vector<UnicodeString> found = kept;
            EXPECT_EQ(information.getHyperLinks(found), result) << what;
            EXPECT_EQ(found, result == 1 ? keptAndOne : kept) << what;
        }
    }
}

/// Names in UTF-16 are padded to four bytes each.
TEST(OleSummaryInformation, ReadsNamesInUtf16) {
    for (const std::size_t codePage : {1200U, 1252U}) {
        PropertySetWriter w;
        std::string names = w.number(2, 4) + w.number(4, 4) + w.wide(u"odd") + "\0\0"s;
        names += w.number(9, 4) + w.wide(u"_PID_HLINKS\0"s);
        w.section().add(0, 0, names).add(1, 2, w.number(codePage, 2));
        w.add(9, 65, w.hyperLinks({u"http://a.example/", u"", u"#pl\u00E4ce", u"odd"}));
        OpenFile document(fileOf("", w.write()));
        OleSummaryInformation information;
        ASSERT_EQ(information.initDocumentSummaryInformation(&document), 1);
        std::vector<UnicodeString> found;
        EXPECT_EQ(information.getHyperLinks(found), codePage == 1200 ? 4 : 0);
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

TEST(OleSummaryInformation, BrokenStreamsAreMalformed) {
    const std::string sample = makeSample();
    const std::tuple<const char*, std::size_t, std::size_t, std::size_t, int> rows[] = {
        {"as written", 2, 2, 0, 1},
        {"no byte order mark", 0, 2, 0, -1},
        {"sections 2^32-1", 24, 4, 0xFFFFFFFF, -1},
        {"section outside", 44, 4, 0xFFFFFFF0, -1},
        {"properties 2^32-1", 72, 4, 0xFFFFFFFF, -1},
        {"property outside", 80, 4, 0xFFFFFFF0, -1},
    };
    for (const auto& [what, offset, size, value, result] : rows) {
        ByteSink sink(false);
        sink.bytes = sample;
        sink.set(offset, value, size);
        OpenFile document(fileOf(sink.bytes));
        OleSummaryInformation information;
        EXPECT_EQ(information.initSummaryInformation(&document), result) << what;
    }
    OpenFile empty(fileOf(""));
    EXPECT_EQ(OleSummaryInformation().initSummaryInformation(&empty), -1);
}

/// Sections that share one long table claim more than the stream has.
TEST(OleSummaryInformation, SharedTablesAreMalformed) {
    const std::size_t sections = 2000;
    const std::size_t properties = 5000;
    ByteSink sink(false);
    sink.put16(0xFFFE);
    sink.bytes.resize(24);
    sink.put32(sections);
    for (std::size_t i = 0; i < sections; ++i) {
        sink.bytes.resize(sink.bytes.size() + 16);
        sink.put32(28 + 20 * sections);
    }
    sink.put64(properties << 32);
    for (std::size_t i = 0; i < properties; ++i) sink.put64(0x0000000800000002);
    for (const int claimed : {2000, 1}) {
        sink.set(24, claimed, 4);
        OpenFile document(fileOf(sink.bytes));
        EXPECT_EQ(OleSummaryInformation().initSummaryInformation(&document), claimed == 1 ? 1 : -1);
    }
}

TEST(OlePropertySet, TellsWhatIsThere) {
    PropertySetWriter writer;
    writer.section().add(1, 2, writer.number(65001, 2)).add(2, 30, writer.narrow("T\xC3\xAF\0"));
    writer.add(4, 0x101E, writer.number(1, 4) + writer.narrow("Author")).add(3, 64, "12345678");
    OpenFile document(fileOf(writer.write()));
    OlePropertySet set;
    EXPECT_TRUE(set.init(&document));
    EXPECT_EQ(set.getTitle(), UnicodeString(u"T\u00EF"));
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
    const std::tuple<const char*, OleLimits, int> rows[] = {
        {"no limit", {}, 1},
        {"bytes reached", {.propertySetBytes = size}, 1},
        {"bytes exceeded", {.propertySetBytes = size - 1}, -1},
        // Two sections, four properties, a name.
        {"items reached", {.properties = 7}, 1},
        {"items exceeded", {.properties = 6}, -1},
    };
    for (const auto& [what, limits, result] : rows) {
        OpenFile document(fileOf(set));
        OleSummaryInformation own;
        own.setLimits(limits);
        EXPECT_EQ(own.initSummaryInformation(&document), result) << what;
        document.setLimits(limits);
        OleSummaryInformation followsFile;
        EXPECT_EQ(followsFile.initSummaryInformation(&document), result) << what;
        OlePropertySet properties;
        EXPECT_EQ(properties.init(&document), result == 1) << what;
    }
}

/// Calls the readers that derived classes use.
struct Reader : OleSummaryInformation {
    void check() {
        std::uint16_t word = 0;
        std::uint32_t dword = 0, sections = 0;
        OLE_CLSID id;
        unsigned char bytes[4] = {};
        ASSERT_TRUE(getPropHeader(sections) && getCLSID(id) && getDWORD(dword));
        EXPECT_EQ(sections, 2U);
        EXPECT_EQ(id.data1, 0xF29F85E0U);
        EXPECT_EQ(dword, 68U);
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
