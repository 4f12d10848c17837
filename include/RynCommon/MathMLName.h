// The names of MathML 2.0.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyVocabularyName.h>

namespace RynCommon {

/// Element and attribute names of MathML 2.0 (Second Edition), numbered from 1 in byte order of
/// their texts; 0 is the empty value. `MATHML_xlink_href` is "xlink:href": each character that C++
/// does not allow is "_".
enum MathMLNameEnum : std::int32_t {
    MATHML_EMPTY = 0,
#define RYN_VOCABULARY_NAME(number, identifier, text) MATHML_##identifier = number,
#include <RynCommon/MathMLNames.inc>
#undef RYN_VOCABULARY_NAME
};

extern template class RYNCOMMON_API RyVocabularyName<MathMLNameEnum>;

/// One name of the vocabulary.
class RYNCOMMON_API MathMLName : public RyVocabularyName<MathMLNameEnum> {
public:
    using RyVocabularyName::RyVocabularyName;
};

}  // namespace RynCommon
