// The names of MathML 2.0.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>

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

/// One name of the vocabulary.
class RYNCOMMON_API MathMLName {
public:
    constexpr MathMLName() = default;
    constexpr MathMLName(MathMLNameEnum number) : number_(number) {}
    /// The empty value for a name outside of the vocabulary.
    MathMLName(RyName name);
    explicit MathMLName(const RyValue& value);

    constexpr bool isEmpty() const { return number_ == MATHML_EMPTY; }
    constexpr operator MathMLNameEnum() const { return number_; }
    operator RyName() const { return toRyName(number_); }
    friend constexpr bool operator==(MathMLName a, MathMLName b) { return a.number_ == b.number_; }
    friend constexpr bool operator!=(MathMLName a, MathMLName b) { return a.number_ != b.number_; }
    friend constexpr bool operator==(MathMLName a, MathMLNameEnum b) { return a.number_ == b; }
    friend constexpr bool operator!=(MathMLName a, MathMLNameEnum b) { return a.number_ != b; }

    static RyName toRyName(MathMLNameEnum number);
    /// Frees the look-up tables; they are built again when needed.
    static void cleanup();

private:
    MathMLNameEnum number_ = MATHML_EMPTY;
};

}  // namespace RynCommon
