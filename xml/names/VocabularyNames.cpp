// The names of MathML and of SVG, by number and by text.
#include <RynCommon/MathMLName.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/SVGName.h>

#include "xml/names/Vocabulary.h"

namespace RynCommon {

namespace {

#define RYN_VOCABULARY_NAME(number, identifier, text) u"" text,
constexpr auto MATHML_NAMES = std::to_array<std::u16string_view>({
#include <RynCommon/MathMLNames.inc>
});
constexpr auto SVG_NAMES = std::to_array<std::u16string_view>({
#include <RynCommon/SVGNames.inc>
});
#undef RYN_VOCABULARY_NAME
static_assert(isAscending(MATHML_NAMES) && isAscending(SVG_NAMES));

constinit Vocabulary mathML(MATHML_NAMES);
constinit Vocabulary svg(SVG_NAMES);

// The vocabulary that an enumeration numbers.
auto& vocabularyOf(MathMLNameEnum) {
    return mathML;
}
auto& vocabularyOf(SVGNameEnum) {
    return svg;
}

template <class Number>
Number lookUp(const UnicodeString& text) {
    return static_cast<Number>(vocabularyOf(Number()).find(text));
}

}  // namespace

template <class Number>
RyVocabularyName<Number>::RyVocabularyName(RyName name)
    : number_(lookUp<Number>(name.toString())) {}

template <class Number>
RyVocabularyName<Number>::RyVocabularyName(const RyValue& value)
    : number_(value.isName() ? lookUp<Number>(value.toRyName().toString())
                             : lookUp<Number>(value.toString())) {}

template <class Number>
RyName RyVocabularyName<Number>::toRyName(Number number) {
    return vocabularyOf(number).toRyName(number);
}

template <class Number>
void RyVocabularyName<Number>::cleanup() {
    vocabularyOf(Number()).cleanup();
}

template class RyVocabularyName<MathMLNameEnum>;
template class RyVocabularyName<SVGNameEnum>;

}  // namespace RynCommon
