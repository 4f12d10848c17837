// Destinations, links, open parameters and fragment parameters.
#include <functional>
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

using Parser = std::function<RyValue(const UnicodeString&)>;

/// The parser of internal destinations in a document whose pages begin at an offset.
Parser insideWithOffset(int offset) {
    return [offset](const UnicodeString& text) {
        return RyValue::parseInternalDestination(text, offset);
    };
}

Parser fragment(bool decodes) {
    return [decodes](const UnicodeString& text) {
        return RyValue::parseUriFragmentParameters(text, decodes);
    };
}

TEST(ReferenceParsers, TextsAndTheirEntries) {
    const Parser type = RyValue::parseDestinationType;
    const Parser pdf = RyValue::parsePDFOpenParameters;
    const Parser excel = RyValue::parseExcelOpenParameters;
    const Parser link = RyValue::parseXlinkHref;
    const Parser inside = insideWithOffset(0);
    const struct {
        Parser parse;
        const char16_t* text;
        const char* expected;
    } rows[] = {
        {type, u" FitB ", "type: fitb"},
        {type, u"FitH,100", "top: 100; type: fith"},
        {type, u"fitbh -1.5", "top: -1.5; type: fitbh"},
        {type, u"fitv 10pt", "left: 10pt; type: fitv"},
        {type, u"fitbv null", "left: null; type: fitbv"},
        {type, u"fitr 1,2,3,4", "bottom: 2; left: 1; right: 3; top: 4; type: fitr"},
        {type, u"XYZ 10 , 20 1.5", "left: 10; top: 20; type: xyz; zoom: 1.5"},
        {type, u"xyz auto", "left: auto; type: xyz"},
        {type, u"xyz,,20", "top: 20; type: xyz"},
        {type, u"xyz-left 1 200%", "left: 1; type: xyz-left; zoom: 200%"},
        {type, u"xyz-top 2", "top: 2; type: xyz-top"},
        {type, u"xyz-left-top 1 2 3", "left: 1; top: 2; type: xyz-left-top; zoom: 3"},
        {type, u"fit 1", ".: ?1; type: fit"},
        {type, u"fith 1 2, x ", ".: ?2, x; top: 1; type: fith"},
        {type, u"fith x1 2", ".: ?2; top: ?x1; type: fith"},
        {type, u"page 1", ".: ?page 1"},
        {type, u"", ""},

        {pdf, u"#page=3&nameddest=Chapter%206", "nameddest: 'Chapter 6'; page: 3"},
        {pdf, u"zoom=150,10,20", "zoom: {left: 10; top: 20; zoom: 150}"},
        {pdf, u"view=FitH,100&viewrect=1,2,3,4",
         "view: {top: 100; type: fith}; viewrect: {height: 4; left: 1; top: 2; width: 3}"},
        {pdf, u"highlight=1,2,3,4,5", "highlight: {.: ?5; bottom: 4; left: 1; right: 2; top: 3}"},
        {pdf, u"pagemode=bookmarks&scrollbar=1&statusbar=0&messages=1&navpanes=1&toolbar=0",
         "messages: true; navpanes: true; pagemode: bookmarks; scrollbar: true; "
         "statusbar: false; toolbar: false"},
        {pdf, u"search=\"two%20words\"&fdf=http://x/y.fdf",
         "fdf: <http://x/y.fdf>; search: 'two words'"},
        {pdf, u"page=x&toolbar=2&pagemode=zoo", "page: ?x; pagemode: ?zoo; toolbar: ?2"},
        {pdf, u"page=1pt&foo=bar&page&page=2&&=1", ".: ?foo=bar&page&page=2&=1; page: ?1pt"},
        {pdf, u"nameddest=%e3%81%82%ff%zz%4", "nameddest: '%e3%81%82%ff%zz%4'"},
        {pdf, u"nameddest=%E3%81%82", "nameddest: 'あ'"},

        {excel, u"Sheet1!B2", "cell: 'B2'; sheet: 'Sheet1'"},
        {excel, u"#Sheet1!$A$1:XFD1048576", "range: '$A$1:XFD1048576'; sheet: 'Sheet1'"},
        {excel, u"'it''s mine'!A:C", "range: 'A:C'; sheet: 'it's mine'"},
        {excel, u"2:$5", "range: '2:$5'"},
        {excel, u" a1 ", "cell: 'a1'"},
        {excel, u"Sheet1!", "sheet: 'Sheet1'"},
        {excel, u"sheet=My%20Sheet&range=A1:B2", "range: 'A1:B2'; sheet: 'My Sheet'"},
        {excel, u"sheet=S&cell=A0&cell=A1&zoom=2", ".: ?cell=A1&zoom=2; cell: ?A0; sheet: 'S'"},
        {excel, u"Sheet1!XFE1", ".: ?XFE1; sheet: 'Sheet1'"},
        {excel, u"Sheet1!A1048577", ".: ?A1048577; sheet: 'Sheet1'"},
        {excel, u"Sheet1!A1:B", ".: ?A1:B; sheet: 'Sheet1'"},
        {excel, u"'open!A1", ".: ?'open!A1"},
        {excel, u"'a'b!A1", ".: ?'a'b!A1"},
        {excel, u"my-name", ".: ?my-name"},
        {excel, u"A1:", ".: ?A1:"},

        {inside, u" #ch1 ", "id: 'ch1'"},
        {inside, u"50%25", "id: '50%25'"},
        {inside, u"#xpointer(id('x'))", "id: 'x'"},
        {inside, u"url('#ch1') fith 10", "id: 'ch1'; top: 10; type: fith"},
        {inside, u"ch1 xyz-left-top", "id: 'ch1'; type: xyz-left-top"},
        {inside, u"ch1 foo 1", ".: ?foo 1; id: 'ch1'"},
        {insideWithOffset(10), u"#page=3&zoom=50", "page: 13; zoom: {zoom: 50}"},
        {insideWithOffset(10), u"#page=2147483647", "page: 2147483647"},
        {insideWithOffset(std::numeric_limits<int>::min()), u"#page=-2147483647",
         "page: -2147483648"},
        {insideWithOffset(10), u"#page=x", "page: ?x"},
        {inside, u"#nameddest=a", "nameddest: 'a'"},
        {inside, u"#other=3", "id: 'other=3'"},
        {inside, u"url(a.fo#x)", ".: ?url(a.fo#x)"},
        {inside, u"#", ".: ?#"},
        {inside, u"", ""},

        {link, u"#x", "id: 'x'"},
        {link, u" url( 'a b.svg#x' ) ", "id: 'x'; uri: <a b.svg>"},
        {link, u"http://h/a?b=c", "uri: <http://h/a?b=c>"},
        {link, u"a.svg#xpointer(id('x y'))", "id: 'x y'; uri: <a.svg>"},
        {link, u"#xpointer(id(%22x%22))", "id: 'x'"},
        {link, u"#xpointer(id(x))", "fragment: 'xpointer(id(x))'"},
        {link, u"#xpointer(id('x'y'))", "fragment: 'xpointer(id('x'y'))'"},
        {link, u"a.pdf#page=3#x", "fragment: 'page=3#x'; uri: <a.pdf>"},
        {link, u"a#", "fragment: ''; uri: <a>"},
        {link, u"url(a", ".: ?url(a"},
        {link, u"url(a) b", ".: ?url(a) b"},
        {link, u"", ""},

        {fragment(true), u"a=1&b=x%20y", "a: '1'; b: 'x y'"},
        {fragment(false), u"#a=1&b=x%20y", "a: '1'; b: 'x%20y'"},
        {fragment(true), u"a=&b==c", "a: ''; b: '=c'"},
        {fragment(true), u"a&=1&b=2&b=3&&", ".: ?a&=1&b=3; b: '2'"},
    };
    for (const auto& row : rows) {
        const RyValue value = row.parse(row.text);
        ASSERT_TRUE(value.isCompound());
        EXPECT_EQ(show(value), row.expected) << s(row.text);
    }
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
    EXPECT_EQ(table->getNameLast(), last + 256);
}

}  // namespace
}  // namespace RynCommon
