// Raw deflate data into a stream.
#include "streams/RawInflate.h"

#include <array>

#include "streams/Inflation.h"

namespace RynCommon {

namespace {

using streams::Inflation;

bool inflateAll(std::ostream& out, const char* from, const char* fromEnd) {
    Inflation inflation(Inflation::Format::Raw);
    std::array<char, 4096> buffer;
    char* const end = buffer.data() + buffer.size();
    while (true) {
        char* to = buffer.data();
        const Inflation::Result result = inflation.run(from, fromEnd, to, end, false);
        if (to != buffer.data()) out.write(buffer.data(), to - buffer.data());
        if (!out.good()) return false;
        if (result != Inflation::Result::Running) return result == Inflation::Result::Ended;
        // Room is left when the data breaks off.
        if (to != end) return false;
    }
}

}  // namespace

bool inflateRaw(std::ostream& out, const unsigned char* data, std::size_t size) {
    const char* const from = reinterpret_cast<const char*>(data);
    try {
        return inflateAll(out, from, data != nullptr ? from + size : from);
    } catch (...) {
        // A stream that is set to throw has its trouble in its own state.
        return false;
    }
}

}  // namespace RynCommon
