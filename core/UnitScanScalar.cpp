// The scalar twins of the scan kernels, one unit at a time.
#include "core/UnitScan.h"

namespace RynCommon::scalar {

namespace {

template <class... Units>
const char16_t* find(const char16_t* p, const char16_t* end, Units... units) {
    while (p != end && !((*p == units) || ...)) ++p;
    return p;
}

template <class Unit>
std::size_t copyPassingOnes(const Unit* in, std::size_t n, const PassingSet& set, char* out) {
    const std::size_t inGroups = n - n % PASSING_GROUP;
    std::size_t i = 0;
    for (; i < inGroups && set.holds(in[i]); ++i) out[i] = static_cast<char>(in[i]);
    return i;
}

}  // namespace

const char16_t* findTextStop(const char16_t* p, const char16_t* end) {
    return find(p, end, u'<', u'&', u']');
}

const char16_t* findValueStop(const char16_t* p, const char16_t* end, char16_t quote) {
    return find(p, end, quote, u'<', u'&', u'\t', u'\n', u'\r');
}

const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t unit) {
    return find(p, end, unit);
}

const char16_t* findMarkupStop(const char16_t* p, const char16_t* end, char16_t a, char16_t b) {
    return find(p, end, a, b);
}

const char16_t* findLineBreakUnit(const char16_t* p, const char16_t* end) {
    return find(p, end, u'\r', u'\u0085', u'\u2028', u'\uFFFF');
}

const char16_t* findColumnStops(const char16_t* p, const char16_t* end, ColumnStops& stops) {
    stops.count = 0;
    for (; p != end && stops.count < ColumnStops::MOST; ++p)
        if (*p == u'\n' || (*p & 0xFC00) == 0xDC00) stops.places[stops.count++] = p;
    return p;
}

LineCount countLines(const char16_t* p, const char16_t* end) {
    LineCount count;
    for (; p != end; ++p) {
        if (*p == u'\n') {
            ++count.lines;
            count.charactersAfterLast = 0;
        } else if (*p < 0xDC00 || *p > 0xDFFF) {
            ++count.charactersAfterLast;
        }
    }
    return count;
}

std::size_t widenAscii(const std::uint8_t* in, std::size_t n, char16_t* out) {
    std::size_t i = 0;
    for (; i < n && in[i] < 0x80; ++i) out[i] = in[i];
    return i;
}

bool isLatin1(const char16_t* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        if (p[i] > 0xFF) return false;
    }
    return true;
}

void narrowLatin1(const char16_t* in, std::size_t n, std::uint8_t* out) {
    for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<std::uint8_t>(in[i]);
}

void widenLatin1(const std::uint8_t* in, std::size_t n, char16_t* out) {
    for (std::size_t i = 0; i < n; ++i) out[i] = in[i];
}

std::size_t copyPassing(const std::uint8_t* in, std::size_t n, const PassingSet& set, char* out) {
    return copyPassingOnes(in, n, set, out);
}

std::size_t narrowPassing(const char16_t* in, std::size_t n, const PassingSet& set, char* out) {
    return copyPassingOnes(in, n, set, out);
}

}  // namespace RynCommon::scalar
