// References: destinations, links and the parameters of fragments.
#include <algorithm>
#include <limits>

#include <RynCommon/RyUtil.h>
#include <RynCommon/RyValue.h>

#include "values/NameChars.h"
#include "values/References.h"
#include "values/TokenScanner.h"

namespace RynCommon {

namespace {

/// Parameters after this many are not taken as names.
constexpr int MAX_PARAMETERS = 256;

RyValue makeLiteral(const UnicodeString& text) {
    return RyValue(text, RYUNIT_LITERAL);
}

/// Takes `prefix` off the start of the text, if it is there.
bool takePrefix(std::u16string_view& text, std::u16string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

/// The x of xpointer(id('x')). False for any other pointer.
bool readXPointer(std::u16string_view fragment, UnicodeString& id) {
    if (!takePrefix(fragment, u"xpointer(id(") || !fragment.ends_with(u"))")) return false;
    fragment.remove_suffix(2);
    if (fragment.size() < 2 || fragment.front() != fragment.back()) return false;
    const char16_t quote = fragment.front();
    const std::u16string_view contents = fragment.substr(1, fragment.size() - 2);
    if ((quote != u'"' && quote != u'\'') || contents.find(quote) != contents.npos) return false;
    id = copyText(contents);
    return true;
}

/// The id that a fragment, still with its escapes, points to: a shorthand pointer or XPointer.
/// False for any other.
bool readPointer(std::u16string_view fragment, UnicodeString& id) {
    const UnicodeString decoded = decodePercent(fragment);
    if (readXPointer(viewText(decoded), id)) return true;
    if (!isNCName(viewText(decoded))) return false;
    id = decoded;
    return true;
}

/// Takes url(...) off the start of the text. False, and nothing changed, when there is none.
bool takeUrl(std::u16string_view& text, UnicodeString& uri) {
    TokenScanner::Place place;
    TokenScanner scanner(text, place);
    const TokenScanner::Token name = scanner.next();
    if (name.kind != RYTOKEN_NAME || scanner.view(name) != u"url" || !scanner.isAt(u'('))
        return false;
    scanner.skipUnit();
    if (!scanner.skipGroup()) return false;
    uri = RyUtil::unquoteUri(copyText(scanner.slice(name.start, place.position)));
    text.remove_prefix(static_cast<std::size_t>(place.position));
    return true;
}

/// Takes the reference of an internal destination off the start of the text. False when it is none.
bool takeInternalReference(std::u16string_view& text, UnicodeString& id) {
    UnicodeString uri;
    std::u16string_view word;
    const bool isUrl = takeUrl(text, uri);
    if (isUrl) {
        word = viewText(uri);
    } else {
        TokenScanner::Place place;
        TokenScanner scanner(text, place);
        word = scanner.view(scanner.nextItem(u' '));
        text.remove_prefix(static_cast<std::size_t>(place.position));
    }
    const bool isFragment = takePrefix(word, u"#");
    if (word.empty() || (isUrl && !isFragment)) return false;
    if (!isFragment)
        id = copyText(word);
    else if (!readPointer(word, id))
        id = decodePercent(word);
    return true;
}

void addPageOffset(ReferenceBuilder& builder, RyName page, int offset) {
    const RyValue value = builder.get(page);
    if (!value.isInteger()) return;
    const std::int64_t sum = std::int64_t{value.getIntegerValue()} + offset;
    using Limits = std::numeric_limits<std::int32_t>;
    builder.set(page, RyValue(std::clamp<std::int64_t>(sum, Limits::min(), Limits::max())));
}

void readParameter(ReferenceBuilder& builder, std::u16string_view part, bool decodes) {
    std::u16string_view value = part;
    const std::u16string_view name = takePart(value, u"=");
    if (name.empty() || name.size() == part.size() || builder.count() == MAX_PARAMETERS)
        return builder.addMalformed(part);
    const RyName key(decodes ? decodePercent(name) : copyText(name));
    if (builder.has(key)) return builder.addMalformed(part);
    builder.set(key, makeLiteral(decodes ? decodePercent(value) : copyText(value)));
}

}  // namespace

RyValue RyValue::parseDestinationType(const UnicodeString& text) {
    ReferenceBuilder builder(u' ');
    readDestination(builder, viewText(text));
    return builder.build();
}

RyValue RyValue::parseInternalDestination(const UnicodeString& text, int pageOffset) {
    const std::u16string_view whole = trimSpace(viewText(text));
    std::u16string_view rest = whole;
    if (takePrefix(rest, u"#") && startsWithPDFOpenParameter(rest)) {
        ReferenceBuilder builder(u'&');
        readPDFOpenParameters(builder, rest);
        addPageOffset(builder, RN_page, pageOffset);
        return builder.build();
    }
    ReferenceBuilder builder(u' ');
    rest = whole;
    UnicodeString id;
    if (!takeInternalReference(rest, id)) {
        builder.addMalformed(whole);
        return builder.build();
    }
    builder.set(RN_id, makeLiteral(id));
    if (const auto view = trimSpace(rest); !view.empty()) readDestination(builder, view);
    return builder.build();
}

RyValue RyValue::parseXlinkHref(const UnicodeString& text) {
    ReferenceBuilder builder(u' ');
    std::u16string_view reference = trimSpace(viewText(text));
    const std::u16string_view whole = reference;
    UnicodeString uri;
    if (takeUrl(reference, uri) && reference.empty())
        reference = viewText(uri);
    else if (whole.starts_with(u"url(")) {
        builder.addMalformed(whole);
        return builder.build();
    }
    const bool hasFragment = reference.find(u'#') != reference.npos;
    if (const auto address = takePart(reference, u"#"); !address.empty())
        builder.set(RN_uri, RyValue(copyText(address), RYUNIT_URI));
    if (UnicodeString id; hasFragment && readPointer(reference, id))
        builder.set(RN_id, makeLiteral(id));
    else if (hasFragment)
        builder.set(RyName(u"fragment"), makeLiteral(copyText(reference)));
    return builder.build();
}

RyValue RyValue::parseUriFragmentParameters(const UnicodeString& text, bool decodes) {
    ReferenceBuilder builder(u'&');
    std::u16string_view rest = viewText(text);
    takePrefix(rest, u"#");
    while (!rest.empty()) readParameter(builder, takePart(rest, u"&"), decodes);
    return builder.build();
}

}  // namespace RynCommon
