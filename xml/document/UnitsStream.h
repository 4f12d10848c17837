// A byte stream over the units of a text.
#pragma once

#include <bit>
#include <istream>
#include <streambuf>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Gives a text as UTF-16LE without a mark. Shares the text's buffer where the machine's byte order
/// allows, and keeps it as long as the stream lives.
class UnitsStream final : private std::streambuf, public std::istream {
public:
    explicit UnitsStream(const UnicodeString& text) : std::istream(nullptr), text_(text) {
        if constexpr (std::endian::native != std::endian::little) swapBytes();
        auto* const bytes = const_cast<char*>(reinterpret_cast<const char*>(text_.getBuffer()));
        setg(bytes, bytes, bytes + std::ptrdiff_t{text_.length()} * 2);
        rdbuf(this);
    }

private:
    void swapBytes() {
        for (std::int32_t i = 0; i < text_.length(); ++i)
            text_.setCharAt(i, static_cast<char16_t>(text_[i] << 8 | text_[i] >> 8));
    }

    UnicodeString text_;
};

}  // namespace RynCommon
