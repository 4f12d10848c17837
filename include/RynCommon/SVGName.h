// The names of SVG 1.1.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyVocabularyName.h>

namespace RynCommon {

/// Element and attribute names of SVG 1.1, numbered from 1 in byte order of their texts; 0 is the
/// empty value. `SVG_xlink_href` is "xlink:href": each character that C++ does not allow is "_".
enum SVGNameEnum : std::int32_t {
    SVG_EMPTY = 0,
#define RYN_VOCABULARY_NAME(number, identifier, text) SVG_##identifier = number,
#include <RynCommon/SVGNames.inc>
#undef RYN_VOCABULARY_NAME
};

extern template class RYNCOMMON_API RyVocabularyName<SVGNameEnum>;

/// One name of the vocabulary.
class RYNCOMMON_API SVGName : public RyVocabularyName<SVGNameEnum> {
public:
    using RyVocabularyName::RyVocabularyName;
};

}  // namespace RynCommon
