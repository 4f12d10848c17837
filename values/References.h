// What the parsers of references and of open parameters share.
#pragma once

#include <span>
#include <string_view>

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

/// Collects the entries of a compound and the parts that fit nowhere.
class ReferenceBuilder {
public:
    /// `joiner` stands between malformed parts in the unnamed entry.
    explicit ReferenceBuilder(char16_t joiner) : map_(new RyNamedValueMap), joiner_(joiner) {}

    bool has(RyName name) const { return map_->getNamedItem(name).getName() == name; }
    int count() const { return map_->getCount(); }
    void set(RyName name, const RyValue& value) { map_->setNamedItem(name, value); }
    RyValue get(RyName name) const { return map_->getNamedItem(name).getValue(); }
    /// Keeps the raw text of a malformed part; an empty one is nothing.
    void addMalformed(std::u16string_view part);
    RyValue build();

private:
    RyPtr<RyNamedValueMap> map_;
    UnicodeString malformed_;
    char16_t joiner_;
};

UnicodeString copyText(std::u16string_view text);
std::u16string_view trimSpace(std::u16string_view text);
/// The text up to `separator`, which is taken off `rest` together with it; all of it when there is
/// none.
std::u16string_view takePart(std::u16string_view& rest, std::u16string_view separators);
/// Resolves percent-escapes of UTF-8 (RFC 3986, 2.1). A run of escapes that is no UTF-8 stays as it
/// is.
UnicodeString decodePercent(std::u16string_view text);

/// Reads one argument for each name: a number, or "null" or "auto" as a name; anything else is an
/// unknown string. White space or a comma separates them, an empty one is left out, and what
/// follows the last is malformed.
void readArguments(ReferenceBuilder& builder, std::u16string_view text,
                   std::span<const RyNameEnum> names);

/// RyValue::parseDestinationType into a compound that may have entries already.
void readDestination(ReferenceBuilder& builder, std::u16string_view text);

/// RyValue::parsePDFOpenParameters in the same way, without the "#" in front.
void readPDFOpenParameters(ReferenceBuilder& builder, std::u16string_view text);
/// Whether the text begins with one of PDF's open parameters and "=".
bool startsWithPDFOpenParameter(std::u16string_view text);

}  // namespace RynCommon
