// The names of MathML, by number and by text.
#include <RynCommon/MathMLName.h>
#include <RynCommon/RyValue.h>

#include "xml/names/Vocabulary.h"

namespace RynCommon {

namespace {

constexpr auto NAMES = std::to_array<std::u16string_view>({
#define RYN_VOCABULARY_NAME(number, identifier, text) u"" text,
#include <RynCommon/MathMLNames.inc>
#undef RYN_VOCABULARY_NAME
});
static_assert(isAscending(NAMES));

constinit Vocabulary vocabulary(NAMES);

MathMLNameEnum lookUp(const UnicodeString& text) {
    return static_cast<MathMLNameEnum>(vocabulary.find(text));
}

}  // namespace

MathMLName::MathMLName(RyName name) : number_(lookUp(name.toString())) {}

MathMLName::MathMLName(const RyValue& value)
    : number_(value.isName() ? lookUp(value.toRyName().toString()) : lookUp(value.toString())) {}

RyName MathMLName::toRyName(MathMLNameEnum number) {
    return vocabulary.toRyName(number);
}

void MathMLName::cleanup() {
    vocabulary.cleanup();
}

}  // namespace RynCommon
