// Parameters for opening a PDF file or a workbook at a place.
#include <RynCommon/RyUtil.h>
#include <RynCommon/RyValue.h>

#include "values/References.h"
#include "values/TokenScanner.h"

namespace RynCommon {

namespace {

RyValue makeLiteral(const UnicodeString& text) {
    return RyValue(text, RYUNIT_LITERAL);
}

// Values of PDF's open parameters. Each gets the decoded text.

RyValue readPage(const UnicodeString& text) {
    const RyValue number = RyValue::parse(text);
    return number.isInteger() && number.isNumber() ? number : RyValue(text);
}

RyValue readLiteral(const UnicodeString& text) {
    return makeLiteral(RyUtil::unquoteString(text));
}

RyValue readUri(const UnicodeString& text) {
    return RyValue(text, RYUNIT_URI);
}

RyValue readPageMode(const UnicodeString& text) {
    for (const char16_t* mode : {u"none", u"bookmarks", u"thumbs", u"layers", u"attachments"})
        if (text == UnicodeString(mode)) return RyValue(RyName(text));
    return RyValue(text);
}

RyValue readSwitch(const UnicodeString& text) {
    if (text == UnicodeString(u'1')) return RyValue(true);
    if (text == UnicodeString(u'0')) return RyValue(false);
    return RyValue(text);
}

RyValue readNumbers(const UnicodeString& text, std::span<const RyNameEnum> names) {
    ReferenceBuilder builder(u',');
    readArguments(builder, viewText(text), names);
    return builder.build();
}

RyValue readZoom(const UnicodeString& text) {
    static constexpr RyNameEnum NAMES[] = {RN_zoom, RN_left, RN_top};
    return readNumbers(text, NAMES);
}

RyValue readViewRectangle(const UnicodeString& text) {
    static constexpr RyNameEnum NAMES[] = {RN_left, RN_top, RN_width, RN_height};
    return readNumbers(text, NAMES);
}

RyValue readHighlight(const UnicodeString& text) {
    static constexpr RyNameEnum NAMES[] = {RN_left, RN_right, RN_top, RN_bottom};
    return readNumbers(text, NAMES);
}

struct PDFParameter {
    std::u16string_view name;
    RyValue (*read)(const UnicodeString&);
};

constexpr PDFParameter PDF_PARAMETERS[] = {
    {u"page", readPage},
    {u"nameddest", readLiteral},
    {u"zoom", readZoom},
    {u"view", RyValue::parseDestinationType},
    {u"viewrect", readViewRectangle},
    {u"pagemode", readPageMode},
    {u"scrollbar", readSwitch},
    {u"search", readLiteral},
    {u"toolbar", readSwitch},
    {u"statusbar", readSwitch},
    {u"messages", readSwitch},
    {u"navpanes", readSwitch},
    {u"highlight", readHighlight},
    {u"fdf", readUri},
};

const PDFParameter* findPDFParameter(std::u16string_view name) {
    for (const PDFParameter& parameter : PDF_PARAMETERS)
        if (parameter.name == name) return &parameter;
    return nullptr;
}

void readPDFParameter(ReferenceBuilder& builder, std::u16string_view part) {
    std::u16string_view value = part;
    const std::u16string_view name = takePart(value, u"=");
    const PDFParameter* const parameter = findPDFParameter(name);
    if (parameter == nullptr || name.size() == part.size()) return builder.addMalformed(part);
    const RyName key(copyText(name));
    if (builder.has(key)) return builder.addMalformed(part);
    builder.set(key, parameter->read(decodePercent(value)));
}

// References to cells.

constexpr std::u16string_view::size_type MAX_COLUMN_LETTERS = 3;
/// The largest sheets: columns A to XFD, rows 1 to 1048576.
constexpr int MAX_COLUMN = 16384;
constexpr int MAX_ROW = 1048576;

/// Takes a column ("A", "$XFD") off the start of the text.
bool takeColumn(std::u16string_view& text) {
    if (text.starts_with(u'$')) text.remove_prefix(1);
    int column = 0;
    std::size_t count = 0;
    for (; count < text.size() && count <= MAX_COLUMN_LETTERS; ++count) {
        const int letter = (text[count] | 0x20) - u'a';
        if (text[count] > 0x7F || letter < 0 || letter > 25) break;
        column = column * 26 + letter + 1;
    }
    text.remove_prefix(count);
    return column >= 1 && column <= MAX_COLUMN;
}

/// Takes a row ("12", "$12") off the start of the text.
bool takeRow(std::u16string_view& text) {
    if (text.starts_with(u'$')) text.remove_prefix(1);
    int row = 0;
    std::size_t count = 0;
    for (; count < text.size() && row <= MAX_ROW; ++count) {
        if (text[count] < u'0' || text[count] > u'9') break;
        row = row * 10 + (text[count] - u'0');
    }
    text.remove_prefix(count);
    return row >= 1 && row <= MAX_ROW;
}

bool isColumn(std::u16string_view text) {
    return takeColumn(text) && text.empty();
}
bool isRow(std::u16string_view text) {
    return takeRow(text) && text.empty();
}
bool isCell(std::u16string_view text) {
    return takeColumn(text) && isRow(text);
}

bool isRange(std::u16string_view text) {
    std::u16string_view end = text;
    const std::u16string_view start = takePart(end, u":");
    return (isCell(start) && isCell(end)) || (isColumn(start) && isColumn(end)) ||
           (isRow(start) && isRow(end));
}

RyName cellName() {
    return RyName(u"cell");
}
RyName rangeName() {
    return RyName(u"range");
}

void readCells(ReferenceBuilder& builder, std::u16string_view text) {
    if (isCell(text))
        builder.set(cellName(), makeLiteral(copyText(text)));
    else if (isRange(text))
        builder.set(rangeName(), makeLiteral(copyText(text)));
    else
        builder.addMalformed(text);
}

/// Takes the sheet's name in apostrophes, one inside of it being doubled, and the "!" behind it.
/// False, and nothing changed, when this is no such name.
bool takeQuotedSheet(std::u16string_view& text, UnicodeString& sheet) {
    UnicodeString name;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == u'\'' && text.substr(i + 1).starts_with(u'!')) {
            text.remove_prefix(i + 2);
            sheet = name;
            return true;
        }
        if (text[i] == u'\'' && !text.substr(++i).starts_with(u'\'')) return false;
        name.append(text[i]);
    }
    return false;
}

void readSheetReference(ReferenceBuilder& builder, std::u16string_view text) {
    UnicodeString sheet;
    if (text.starts_with(u'\'')) {
        if (!takeQuotedSheet(text, sheet)) return builder.addMalformed(text);
        builder.set(RN_sheet, makeLiteral(sheet));
    } else if (const std::size_t mark = text.rfind(u'!'); mark != text.npos) {
        builder.set(RN_sheet, makeLiteral(copyText(text.substr(0, mark))));
        text.remove_prefix(mark + 1);
    }
    readCells(builder, text);
}

bool isCellPair(std::u16string_view part) {
    return part.starts_with(u"sheet=") || part.starts_with(u"cell=") || part.starts_with(u"range=");
}

void readCellPair(ReferenceBuilder& builder, std::u16string_view part) {
    std::u16string_view raw = part;
    const std::u16string_view name = takePart(raw, u"=");
    const UnicodeString value = decodePercent(raw);
    const RyName key = name == u"sheet"  ? RyName(RN_sheet)
                       : name == u"cell" ? cellName()
                                         : rangeName();
    if (!isCellPair(part) || builder.has(key)) return builder.addMalformed(part);
    const bool isValid =
        key == RN_sheet || (name == u"cell" ? isCell(viewText(value)) : isRange(viewText(value)));
    builder.set(key, isValid ? makeLiteral(value) : RyValue(value));
}

}  // namespace

bool startsWithPDFOpenParameter(std::u16string_view text) {
    const std::u16string_view name = takePart(text, u"=");
    return !text.empty() && findPDFParameter(name) != nullptr;
}

void readPDFOpenParameters(ReferenceBuilder& builder, std::u16string_view text) {
    while (!text.empty()) readPDFParameter(builder, takePart(text, u"&#"));
}

RyValue RyValue::parsePDFOpenParameters(const UnicodeString& text) {
    ReferenceBuilder builder(u'&');
    readPDFOpenParameters(builder, viewText(text));
    return builder.build();
}

RyValue RyValue::parseExcelOpenParameters(const UnicodeString& text) {
    ReferenceBuilder builder(u'&');
    std::u16string_view rest = trimSpace(viewText(text));
    if (rest.starts_with(u'#')) rest.remove_prefix(1);
    if (!isCellPair(rest)) {
        readSheetReference(builder, rest);
        return builder.build();
    }
    while (!rest.empty()) readCellPair(builder, takePart(rest, u"&"));
    return builder.build();
}

}  // namespace RynCommon
