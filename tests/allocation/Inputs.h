// What the calls share: texts, streams that need no memory of their own, results as text.
#pragma once

#include <RynCommon/RyError.h>

#include <array>
#include <istream>
#include <memory>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>

#include "tests/allocation/Sweep.h"

namespace allocation {

using RynCommon::UnicodeString;

inline std::string narrow(const UnicodeString& text) {
    const Pause pause;
    std::string bytes;
    return text.isBogus() ? "(bogus)" : text.toUTF8String(bytes);
}

inline UnicodeString widen(const std::string& text) {
    return UnicodeString::fromUTF8(text);
}

inline std::string repeat(std::string_view text, int count) {
    std::string result;
    while (count-- > 0) result += text;
    return result;
}

/// A stream over bytes, made in time.
inline std::unique_ptr<std::istream> openBytes(const std::string& bytes) {
    const Pause pause;
    return std::make_unique<std::istringstream>(bytes);
}

/// Reads to the end into room that is there already. An exception of the buffer passes.
inline std::string readBytes(std::istream& in) {
    std::string result = paused([] { return std::string(1 << 17, '\0'); });
    std::size_t size = 0;
    std::streambuf* const buffer = in.rdbuf();
    while (const std::streamsize got = buffer->sgetn(result.data() + size, 1000))
        size += static_cast<std::size_t>(got);
    result.resize(size);
    return result;
}

/// An output stream with room of its own.
class FixedOut : private std::streambuf, public std::ostream {
public:
    FixedOut() : std::ostream(this), room_(std::make_unique<std::array<char, 1 << 16>>()) {
        setp(room_->data(), room_->data() + room_->size());
    }

    std::string written() const {
        const Pause pause;
        return {pbase(), static_cast<std::size_t>(pptr() - pbase())};
    }

private:
    std::unique_ptr<std::array<char, 1 << 16>> room_;
};

}  // namespace allocation
