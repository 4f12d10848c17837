// Declared attributes; see the header.
#include "xml/parser/AttributeDefaults.h"

#include <algorithm>

#include "core/MemoryCheck.h"

namespace RynCommon {

namespace {

/// Declarations per element; XML documents stay far below, and what is beyond is not looked at.
constexpr std::size_t MOST_PER_ELEMENT = 1024;

}  // namespace

void AttributeDefaults::declare(RyName elementPrefix, RyName elementLocal,
                                const AttributeDeclaration& attribute) {
    Declarations& list = elements_[key(elementPrefix, elementLocal)];
    const bool known =
        std::any_of(list.begin(), list.end(), [&](const AttributeDeclaration& other) {
            return other.local == attribute.local && other.prefix == attribute.prefix;
        });
    if (!known && list.size() < MOST_PER_ELEMENT) list.push_back(attribute);
}

const AttributeDefaults::Declarations* AttributeDefaults::find(RyName elementPrefix,
                                                               RyName elementLocal) const {
    const auto found = elements_.find(key(elementPrefix, elementLocal));
    return found == elements_.end() ? nullptr : &found->second;
}

void AttributeDefaults::collapse(UnicodeString& value) {
    UnicodeString result;
    for (std::int32_t i = 0; i < value.length(); ++i) {
        const char16_t c = value[i];
        const bool afterBlank = result.isEmpty() || result[result.length() - 1] == u' ';
        if (c != u' ' || !afterBlank) result.append(c);
    }
    if (result.endsWith(UnicodeString(u' '))) result.truncate(result.length() - 1);
    requireWhole(result);
    value = result;
}

}  // namespace RynCommon
