// The names of SVG, by number and by text.
#include <RynCommon/RyValue.h>
#include <RynCommon/SVGName.h>

#include "xml/names/Vocabulary.h"

namespace RynCommon {

namespace {

constexpr auto NAMES = std::to_array<std::u16string_view>({
#define RYN_VOCABULARY_NAME(number, identifier, text) u"" text,
#include <RynCommon/SVGNames.inc>
#undef RYN_VOCABULARY_NAME
});
static_assert(isAscending(NAMES));

constinit Vocabulary vocabulary(NAMES);

SVGNameEnum lookUp(const UnicodeString& text) {
    return static_cast<SVGNameEnum>(vocabulary.find(text));
}

}  // namespace

SVGName::SVGName(RyName name) : number_(lookUp(name.toString())) {}

SVGName::SVGName(const RyValue& value)
    : number_(value.isName() ? lookUp(value.toRyName().toString()) : lookUp(value.toString())) {}

RyName SVGName::toRyName(SVGNameEnum number) {
    return vocabulary.toRyName(number);
}

void SVGName::cleanup() {
    vocabulary.cleanup();
}

}  // namespace RynCommon
