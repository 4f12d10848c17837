// Lack of memory, where it would go unnoticed or be called something else.
//
// operator new throws; ICU does not: a string that cannot grow becomes bogus, reads as empty and
// ignores what is appended to it. So every text that was put together passes requireWhole() before
// it is handed on, and nothing is ever lost in silence. Texts are put together by append(), not by
// chains of "+", which leave a bogus part out.
#pragma once

#include <new>

#include <RynCommon/RyError.h>

namespace RynCommon {

/// Throws std::bad_alloc for a text that ICU has given up.
inline void requireWhole(const UnicodeString& text) {
    if (text.isBogus()) [[unlikely]]
        throw std::bad_alloc();
}

/// The text, when it is whole.
inline UnicodeString takeWhole(UnicodeString text) {
    requireWhole(text);
    return text;
}

/// A copy that is whole, also of a text that lies in another one's memory.
inline UnicodeString ownText(const UnicodeString& text) {
    return takeWhole(UnicodeString(text));
}

/// Runs `work`; a lack of memory leaves it as error 2049. `source` has at most 27 units, which
/// a string keeps within itself.
template <class Work>
decltype(auto) withMemoryError(const char16_t* source, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc& error) {
        throw RyError(error, UnicodeString(source));
    }
}

}  // namespace RynCommon
