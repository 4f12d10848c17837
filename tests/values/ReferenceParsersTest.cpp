// Destinations, links, open parameters and fragment parameters.
#include <limits>
#include <map>

#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

/// The entries in the order of their texts, since numbers of run-time names depend on what ran
/// before: kind and unit, then the text; "?" for an unknown string.
std::string show(const RyValue& compound) {
    std::map<std::string, std::string> entries;
    for (RyNamedValueMapIterator it(compound.getNamedValueMap()); it.hasNext();) {
        const RyNamedValue& entry = it.next();
        std::string text = entry.isCompound()        ? "{" + show(entry) + "}"
                           : entry.isUnknownString() ? "?" + s(entry.toString())
                           : entry.isLiteralString() ? "'" + s(entry.toString()) + "'"
                           : entry.isUriString()     ? "<" + s(entry.toString()) + ">"
                                                     : s(entry.toString());
        entries[s(entry.getName().toString())] = text;
    }
    std::string result;
    for (const auto& [name, text] : entries)
        result += (result.empty() ? "" : "; ") + (name.empty() ? "." : name) + ": " + text;
    return result;
}

struct Row {
    const char16_t* text;
    const char* expected;
};

template <std::size_t COUNT>
void expectRows(RyValue (*parser)(const UnicodeString&), const Row (&rows)[COUNT]) {
    for (const Row& row : rows) {
        const RyValue value = parser(row.text);
        ASSERT_TRUE(value.isCompound());
        EXPECT_EQ(show(value), row.expected) << s(row.text);
    }
}

TEST(ReferenceParsers, DestinationType) {
    const Row rows[] = {{u"fit", "type: fit"},
                        {u" FitB ", "type: fitb"},
                        {u"fith 100", "top: 100; type: fith"},
                        {u"FitH,100", "top: 100; type: fith"},
                        {u"fitbh -1.5", "top: -1.5; type: fitbh"},
                        {u"fitv 10pt", "left: 10pt; type: fitv"},
                        {u"fitbv null", "left: null; type: fitbv"},
                        {u"fitr 1,2,3,4", "bottom: 2; left: 1; right: 3; top: 4; type: fitr"},
                        {u"XYZ 10 , 20 1.5", "left: 10; top: 20; type: xyz; zoom: 1.5"},
                        {u"xyz auto", "left: auto; type: xyz"},
                        {u"xyz,,20", "top: 20; type: xyz"},
                        {u"xyz-left 1 200%", "left: 1; type: xyz-left; zoom: 200%"},
                        {u"xyz-top 2", "top: 2; type: xyz-top"},
                        {u"xyz-left-top 1 2 3", "left: 1; top: 2; type: xyz-left-top; zoom: 3"},
                        {u"fit 1", ".: ?1; type: fit"},
                        {u"fith 1 2, x ", ".: ?2, x; top: 1; type: fith"},
                        {u"fith x1 2", ".: ?2; top: ?x1; type: fith"},
                        {u"page 1", ".: ?page 1"},
                        {u"", ""}};
    expectRows(RyValue::parseDestinationType, rows);
}

TEST(ReferenceParsers, PDFOpenParameters) {
    const Row rows[] = {
        {u"page=3", "page: 3"},
        {u"#page=3&nameddest=Chapter%206", "nameddest: 'Chapter 6'; page: 3"},
        {u"page=1#toolbar=0", "page: 1; toolbar: false"},
        {u"zoom=150,10,20", "zoom: {left: 10; top: 20; zoom: 150}"},
        {u"view=FitH,100&viewrect=1,2,3,4",
         "view: {top: 100; type: fith}; viewrect: {height: 4; left: 1; top: 2; width: 3}"},
        {u"highlight=1,2,3,4,5", "highlight: {.: ?5; bottom: 4; left: 1; right: 2; top: 3}"},
        {u"pagemode=bookmarks&scrollbar=1&statusbar=0&messages=1&navpanes=1",
         "messages: true; navpanes: true; pagemode: bookmarks; scrollbar: true; statusbar: false"},
        {u"search=\"two%20words\"&fdf=http://x/y.fdf",
         "fdf: <http://x/y.fdf>; search: 'two words'"},
        {u"page=x&toolbar=2&pagemode=zoo", "page: ?x; pagemode: ?zoo; toolbar: ?2"},
        {u"page=1pt&foo=bar&page&page=2&&=1", ".: ?foo=bar&page&page=2&=1; page: ?1pt"},
        {u"nameddest=%e3%81%82%ff%zz%4", "nameddest: '%e3%81%82%ff%zz%4'"},
        {u"nameddest=%E3%81%82", "nameddest: 'あ'"},
        {u"", ""}};
    expectRows(RyValue::parsePDFOpenParameters, rows);
}

TEST(ReferenceParsers, ExcelOpenParameters) {
    const Row rows[] = {
        {u"Sheet1!B2", "cell: 'B2'; sheet: 'Sheet1'"},
        {u"#Sheet1!$A$1:XFD1048576", "range: '$A$1:XFD1048576'; sheet: 'Sheet1'"},
        {u"'it''s mine'!A:C", "range: 'A:C'; sheet: 'it's mine'"},
        {u"2:$5", "range: '2:$5'"},
        {u" a1 ", "cell: 'a1'"},
        {u"Sheet1!", "sheet: 'Sheet1'"},
        {u"sheet=My%20Sheet&range=A1:B2", "range: 'A1:B2'; sheet: 'My Sheet'"},
        {u"sheet=S&cell=A0&cell=A1&zoom=2", ".: ?cell=A1&zoom=2; cell: ?A0; sheet: 'S'"},
        {u"Sheet1!XFE1", ".: ?XFE1; sheet: 'Sheet1'"},
        {u"Sheet1!A1048577", ".: ?A1048577; sheet: 'Sheet1'"},
        {u"Sheet1!A1:B", ".: ?A1:B; sheet: 'Sheet1'"},
        {u"'open!A1", ".: ?'open!A1"},
        {u"'a'b!A1", ".: ?'a'b!A1"},
        {u"my-name", ".: ?my-name"},
        {u"A1:", ".: ?A1:"},
        {u"", ""}};
    expectRows(RyValue::parseExcelOpenParameters, rows);
}

TEST(ReferenceParsers, InternalDestination) {
    const struct {
        const char16_t* text;
        int offset;
        const char* expected;
    } rows[] = {
        {u"ch1", 5, "id: 'ch1'"},
        {u" #ch1 ", 0, "id: 'ch1'"},
        {u"#%E3%81%82", 0, "id: 'あ'"},
        {u"50%25", 0, "id: '50%25'"},
        {u"#xpointer(id('x'))", 0, "id: 'x'"},
        {u"url('#ch1') fith 10", 0, "id: 'ch1'; top: 10; type: fith"},
        {u"ch1 xyz-left-top", 0, "id: 'ch1'; type: xyz-left-top"},
        {u"ch1 foo 1", 0, ".: ?foo 1; id: 'ch1'"},
        {u"#page=3&zoom=50", 10, "page: 13; zoom: {zoom: 50}"},
        {u"#page=2147483647", 10, "page: 2147483647"},
        {u"#page=-2147483647", std::numeric_limits<int>::min(), "page: -2147483648"},
        {u"#page=x", 10, "page: ?x"},
        {u"#nameddest=a", 10, "nameddest: 'a'"},
        {u"#other=3", 10, "id: 'other=3'"},
        {u"url(a.fo#x)", 0, ".: ?url(a.fo#x)"},
        {u"#", 0, ".: ?#"},
        {u"", 0, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(show(RyValue::parseInternalDestination(row.text, row.offset)), row.expected)
            << s(row.text);
}

TEST(ReferenceParsers, XlinkHref) {
    const Row rows[] = {{u"#x", "id: 'x'"},
                        {u"a.svg#x", "id: 'x'; uri: <a.svg>"},
                        {u" url( 'a b.svg#x' ) ", "id: 'x'; uri: <a b.svg>"},
                        {u"url(#x)", "id: 'x'"},
                        {u"http://h/a?b=c", "uri: <http://h/a?b=c>"},
                        {u"a.svg#xpointer(id('x y'))", "id: 'x y'; uri: <a.svg>"},
                        {u"#xpointer(id(%22x%22))", "id: 'x'"},
                        {u"#xpointer(id(x))", "fragment: 'xpointer(id(x))'"},
                        {u"#xpointer(id('x'y'))", "fragment: 'xpointer(id('x'y'))'"},
                        {u"#xpointer(/1)", "fragment: 'xpointer(/1)'"},
                        {u"a.pdf#page=3#x", "fragment: 'page=3#x'; uri: <a.pdf>"},
                        {u"a#", "fragment: ''; uri: <a>"},
                        {u"url(a", ".: ?url(a"},
                        {u"url(a) b", ".: ?url(a) b"},
                        {u"", ""}};
    expectRows(RyValue::parseXlinkHref, rows);
}

TEST(ReferenceParsers, UriFragmentParameters) {
    const struct {
        const char16_t* text;
        bool decodes;
        const char* expected;
    } rows[] = {
        {u"a=1&b=x%20y", true, "a: '1'; b: 'x y'"},
        {u"#a=1&b=x%20y", false, "a: '1'; b: 'x%20y'"},
        {u"a=&b==c", true, "a: ''; b: '=c'"},
        {u"a&=1&b=2&b=3&&", true, ".: ?a&=1&b=3; b: '2'"},
        {u"", true, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(show(RyValue::parseUriFragmentParameters(row.text, row.decodes)), row.expected)
            << s(row.text);
}

TEST(ReferenceParsers, ParametersCannotFillTheNameTable) {
    UnicodeString text;
    for (int i = 0; i < 100'000; ++i)
        text += u"never-seen-parameter-" + RyValue(i).toString() + u"=1&";
    RyNameTable* const table = RyNameTable::getSharedNameTable();
    const int last = table->getNameLast();
    const RyValue value = RyValue::parseUriFragmentParameters(text, true);
    EXPECT_EQ(table->getNameLast(), last + 256);
    EXPECT_EQ(value.getNamedValueMap()->getCount(), 257);
    EXPECT_TRUE(
        value.getNamedItem(RyName()).getStringValue().startsWith(u"never-seen-parameter-256=1&"));
    RyValue::parsePDFOpenParameters(text);
    RyValue::parseExcelOpenParameters(text);
    RyValue::parseDestinationType(text);
    EXPECT_EQ(table->getNameLast(), last + 256);
}

}  // namespace
}  // namespace RynCommon
