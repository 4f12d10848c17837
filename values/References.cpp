// What the parsers of references and of open parameters share.
#include "values/References.h"

#include <algorithm>
#include <array>
#include <string>

#include <unicode/locid.h>
#include <unicode/ustring.h>

#include "core/MemoryCheck.h"
#include "core/NameTable.h"
#include "text/NumberText.h"
#include "values/TokenScanner.h"

namespace RynCommon {

namespace {

constexpr std::u16string_view SPACE = u" \t\n\r";

/// The byte of the escape at the start of the text, -1 when it is none.
int readEscapedByte(std::u16string_view text) {
    if (text.size() < 3 || text[0] != u'%') return -1;
    const int high = getHexDigit(text[1]);
    const int low = getHexDigit(text[2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

/// Takes the run of escapes at the start of `rest` and appends what it stands for.
void appendEscapes(UnicodeString& text, std::u16string_view& rest) {
    const std::u16string_view raw = rest;
    std::string bytes;
    for (int byte = readEscapedByte(rest); byte >= 0; byte = readEscapedByte(rest)) {
        bytes.push_back(static_cast<char>(byte));
        rest.remove_prefix(3);
    }
    const auto length = static_cast<std::int32_t>(bytes.size());
    std::u16string decoded(bytes.size(), u'\0');
    std::int32_t count = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(decoded.data(), length, &count, bytes.data(), length, &error);
    if (U_SUCCESS(error))
        text.append(decoded.data(), count);
    else
        text.append(raw.data(), static_cast<std::int32_t>(raw.size() - rest.size()));
}

RyValue parseArgument(std::u16string_view text) {
    TokenScanner::Place place;
    TokenScanner scanner(text, place);
    TokenScanner::Token token = scanner.nextExp();
    const std::u16string_view name = scanner.view(token);
    const bool isPlaceholder = token.kind == RYTOKEN_NAME && (name == u"null" || name == u"auto");
    if ((token.kind == RYTOKEN_NUMBER || isPlaceholder) && scanner.isAtEnd())
        return scanner.makeValue(token);
    return RyValue(copyText(text));
}

/// A destination keyword and its arguments, in PDF's order.
struct Destination {
    RyNameEnum type;
    std::uint8_t count;
    std::array<RyNameEnum, 4> names;
};

constexpr Destination DESTINATIONS[] = {
    {RN_fit, 0, {}},
    {RN_fitb, 0, {}},
    {RN_fith, 1, {RN_top}},
    {RN_fitbh, 1, {RN_top}},
    {RN_fitv, 1, {RN_left}},
    {RN_fitbv, 1, {RN_left}},
    {RN_fitr, 4, {RN_left, RN_bottom, RN_right, RN_top}},
    {RN_xyz, 3, {RN_left, RN_top, RN_zoom}},
    {RN_xyz_left, 2, {RN_left, RN_zoom}},
    {RN_xyz_top, 2, {RN_top, RN_zoom}},
    {RN_xyz_left_top, 3, {RN_left, RN_top, RN_zoom}},
};

const Destination* findDestination(std::u16string_view keyword) {
    UnicodeString lower = copyText(keyword);
    requireWhole(lower.toLower(icu::Locale::getRoot()));
    const RyNameEnum name = findBuiltinName(lower.getBuffer(), lower.length());
    for (const Destination& destination : DESTINATIONS)
        if (destination.type == name) return &destination;
    return nullptr;
}

}  // namespace

void ReferenceBuilder::addMalformed(std::u16string_view part) {
    if (part.empty()) return;
    if (!malformed_.isEmpty()) malformed_.append(joiner_);
    malformed_.append(part.data(), static_cast<std::int32_t>(part.size()));
    requireWhole(malformed_);
}

RyValue ReferenceBuilder::build() {
    if (!malformed_.isEmpty()) set(RyName(), RyValue(malformed_));
    return RyValue(map_.get());
}

UnicodeString copyText(std::u16string_view text) {
    return takeWhole(UnicodeString(text.data(), static_cast<std::int32_t>(text.size())));
}

std::u16string_view trimSpace(std::u16string_view text) {
    const std::size_t start = text.find_first_not_of(SPACE);
    if (start == std::u16string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(SPACE) + 1 - start);
}

std::u16string_view takePart(std::u16string_view& rest, std::u16string_view separators) {
    const std::size_t end = std::min(rest.find_first_of(separators), rest.size());
    const std::u16string_view part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

UnicodeString decodePercent(std::u16string_view text) {
    UnicodeString decoded;
    while (!text.empty()) {
        const bool isEscape = readEscapedByte(text) >= 0;
        if (isEscape) {
            appendEscapes(decoded, text);
            continue;
        }
        const std::size_t plain = std::min(text.find(u'%', 1), text.size());
        decoded.append(text.data(), static_cast<std::int32_t>(plain));
        text.remove_prefix(plain);
    }
    requireWhole(decoded);
    return decoded;
}

void readArguments(ReferenceBuilder& builder, std::u16string_view text,
                   std::span<const RyNameEnum> names) {
    TokenScanner::Place place;
    TokenScanner scanner(text, place);
    for (const RyNameEnum name : names) {
        const TokenScanner::Token item = scanner.nextItem(u',');
        if (item.textStart != item.textEnd) builder.set(name, parseArgument(scanner.view(item)));
        scanner.skip(u',');
    }
    builder.addMalformed(trimSpace(text.substr(static_cast<std::size_t>(place.position))));
}

void readDestination(ReferenceBuilder& builder, std::u16string_view text) {
    TokenScanner::Place place;
    TokenScanner scanner(text, place);
    const TokenScanner::Token keyword = scanner.nextItem(u',');
    const Destination* const destination = findDestination(scanner.view(keyword));
    if (destination == nullptr) return builder.addMalformed(trimSpace(text));
    builder.set(RN_type, RyValue(destination->type));
    scanner.skip(u',');
    readArguments(builder, text.substr(static_cast<std::size_t>(place.position)),
                  std::span(destination->names).first(destination->count));
}

}  // namespace RynCommon
