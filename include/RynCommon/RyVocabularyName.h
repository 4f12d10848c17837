// What the names of all XML vocabularies have in common.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>

namespace RynCommon {

/// One name of a vocabulary, or the empty value. The base of MathMLName and SVGName, for which
/// alone the library defines it: `Number` is the enumeration of their names, from 1 on; 0 is the
/// empty value.
template <class Number>
class RyVocabularyName {
public:
    constexpr RyVocabularyName() = default;
    constexpr RyVocabularyName(Number number) : number_(number) {}
    /// The empty value for a name outside of the vocabulary.
    RyVocabularyName(RyName name);
    explicit RyVocabularyName(const RyValue& value);

    constexpr bool isEmpty() const { return number_ == Number(); }
    constexpr operator Number() const { return number_; }
    operator RyName() const { return toRyName(number_); }
    friend constexpr bool operator==(RyVocabularyName a, RyVocabularyName b) {
        return a.number_ == b.number_;
    }
    friend constexpr bool operator!=(RyVocabularyName a, RyVocabularyName b) {
        return a.number_ != b.number_;
    }
    friend constexpr bool operator==(RyVocabularyName a, Number b) { return a.number_ == b; }
    friend constexpr bool operator!=(RyVocabularyName a, Number b) { return a.number_ != b; }

    static RyName toRyName(Number number);
    /// Frees the look-up tables; they are built again when needed.
    static void cleanup();

private:
    Number number_{};
};

}  // namespace RynCommon
