// The names of SVG 1.1.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>

namespace RynCommon {

/// Element and attribute names of SVG 1.1, numbered from 1 in byte order of their texts; 0 is the
/// empty value. `SVG_xlink_href` is "xlink:href": each character that C++ does not allow is "_".
enum SVGNameEnum : std::int32_t {
    SVG_EMPTY = 0,
#define RYN_VOCABULARY_NAME(number, identifier, text) SVG_##identifier = number,
#include <RynCommon/SVGNames.inc>
#undef RYN_VOCABULARY_NAME
};

/// One name of the vocabulary.
class RYNCOMMON_API SVGName {
public:
    constexpr SVGName() = default;
    constexpr SVGName(SVGNameEnum number) : number_(number) {}
    /// The empty value for a name outside of the vocabulary.
    SVGName(RyName name);
    explicit SVGName(const RyValue& value);

    constexpr bool isEmpty() const { return number_ == SVG_EMPTY; }
    constexpr operator SVGNameEnum() const { return number_; }
    operator RyName() const { return toRyName(number_); }
    friend constexpr bool operator==(SVGName a, SVGName b) { return a.number_ == b.number_; }
    friend constexpr bool operator!=(SVGName a, SVGName b) { return a.number_ != b.number_; }
    friend constexpr bool operator==(SVGName a, SVGNameEnum b) { return a.number_ == b; }
    friend constexpr bool operator!=(SVGName a, SVGNameEnum b) { return a.number_ != b; }

    static RyName toRyName(SVGNameEnum number);
    /// Frees the look-up tables; they are built again when needed.
    static void cleanup();

private:
    SVGNameEnum number_ = SVG_EMPTY;
};

}  // namespace RynCommon
