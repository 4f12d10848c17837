// Fuzz target of the vector kernels over runs of units, against their scalar twins. A run
// ends where its block of memory ends, so that a sanitizer sees what is read or written beyond.
//
// The first byte chooses where the run starts, the next four are the units looked for, the rest is
// the run: once as bytes, once as units.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/UnitScan.h"
#include "core/Utf8Units.h"
#include "fuzz/ByteFeed.h"
#include "fuzz/Require.h"

using namespace RynCommon;

namespace {

/// A run that ends where its block ends.
template <class Unit>
class Run {
public:
    Run(const Unit* units, std::size_t count, std::size_t offset)
        : block_(new Unit[offset + count]()), start_(offset), count_(count) {
        std::copy(units, units + count, begin());
    }

    Unit* begin() { return block_.get() + start_; }
    Unit* end() { return begin() + count_; }
    std::size_t size() const { return count_; }

    friend bool operator==(const Run& a, const Run& b) {
        return std::equal(a.block_.get(), a.block_.get() + a.start_ + a.count_, b.block_.get());
    }

private:
    std::unique_ptr<Unit[]> block_;
    std::size_t start_;
    std::size_t count_;
};

using Units = Run<char16_t>;
using Bytes = Run<std::uint8_t>;

template <class Find>
std::vector<const char16_t*> allColumnStops(const char16_t* p, const char16_t* end, Find find) {
    std::vector<const char16_t*> all;
    for (ColumnStops stops; p != end;) {
        p = find(p, end, stops);
        all.insert(all.end(), stops.places, stops.places + stops.count);
    }
    return all;
}

void checkFinding(Units& run, char16_t a, char16_t b) {
    const char16_t* const p = run.begin();
    const char16_t* const end = run.end();
    require(findTextStop(p, end) == scalar::findTextStop(p, end), "findTextStop");
    for (const char16_t quote : {u'"', u'\'', a}) {
        require(findValueStop(p, end, quote) == scalar::findValueStop(p, end, quote),
                "findValueStop");
    }
    require(findUnit(p, end, a) == scalar::findUnit(p, end, a) &&
                findUnit(p, end, a) == std::find(p, end, a),
            "findUnit");
    require(findMarkupStop(p, end, a, b) == scalar::findMarkupStop(p, end, a, b), "findMarkupStop");
    require(
        allColumnStops(p, end, findColumnStops) == allColumnStops(p, end, scalar::findColumnStops),
        "findColumnStops");
    require(findLineBreakUnit(p, end) == scalar::findLineBreakUnit(p, end), "findLineBreakUnit");
}

void checkCounting(Units& run) {
    const LineCount found = countLines(run.begin(), run.end());
    const LineCount expected = scalar::countLines(run.begin(), run.end());
    require(
        found.lines == expected.lines && found.charactersAfterLast == expected.charactersAfterLast,
        "countLines");
}

void checkNarrowing(Units& run, std::size_t offset) {
    const bool isNarrow = isLatin1(run.begin(), run.size());
    require(isNarrow == scalar::isLatin1(run.begin(), run.size()), "isLatin1");
    if (!isNarrow) return;
    const std::string zeros(run.size(), '\0');
    const auto* const blank = reinterpret_cast<const std::uint8_t*>(zeros.data());
    Bytes one(blank, run.size(), offset);
    Bytes other(blank, run.size(), offset);
    narrowLatin1(run.begin(), run.size(), one.begin());
    scalar::narrowLatin1(run.begin(), run.size(), other.begin());
    require(one == other, "narrowLatin1");
}

template <class Input, class Copy, class Twin>
void checkPassing(Input& run, Copy copy, Twin twin, const char* what) {
    const PassingSet set{0x5F, '\n', {'&', '<', '>', '"', '&'}};
    std::string one(run.size(), '\0');
    std::string other(run.size(), '\0');
    const std::size_t count = copy(run.begin(), run.size(), set, one.data());
    require(count == twin(run.begin(), run.size(), set, other.data()), what);
    require(one.compare(0, count, other, 0, count) == 0, what);
}

void checkWidening(Bytes& run, std::size_t offset) {
    const std::u16string blank(run.size(), u'\0');
    Units one(blank.data(), run.size(), offset);
    Units other(blank.data(), run.size(), offset);
    widenLatin1(run.begin(), run.size(), one.begin());
    scalar::widenLatin1(run.begin(), run.size(), other.begin());
    require(one == other, "widenLatin1");

    const std::size_t count = widenAscii(run.begin(), run.size(), one.begin());
    require(count == scalar::widenAscii(run.begin(), run.size(), other.begin()), "widenAscii");
    require(std::equal(one.begin(), one.begin() + count, other.begin()), "widenAscii's units");
    checkPassing(run, copyPassing, scalar::copyPassing, "copyPassing");
}

// Returns the units made.
std::u16string checkDecoding(Bytes& run) {
    std::u16string one(run.size() / 3, u'\0');
    std::u16string other = one;
    const std::size_t count = decodeThreeByteRun(run.begin(), run.size(), one.data());
    require(count == scalar::decodeThreeByteRun(run.begin(), run.size(), other.data()),
            "decodeThreeByteRun");
    require(one.compare(0, count, other, 0, count) == 0, "decodeThreeByteRun's units");
    return one.substr(0, count);
}

// What was encoded decodes to the same, as far as there are whole groups of it.
void checkEncoding(Units& run, std::size_t offset) {
    const std::string zeros(3 * run.size() + 4, '\0');
    const auto* const blank = reinterpret_cast<const std::uint8_t*>(zeros.data());
    Bytes one(blank, zeros.size(), offset);
    Bytes other(blank, zeros.size(), offset);
    const std::size_t count = encodeThreeByteRun(run.begin(), run.size(), one.begin());
    require(count == scalar::encodeThreeByteRun(run.begin(), run.size(), other.begin()),
            "encodeThreeByteRun");
    require(std::equal(one.begin(), one.begin() + 3 * count, other.begin()),
            "encodeThreeByteRun's bytes");
    Bytes encoded(one.begin(), 3 * count, offset);
    const std::u16string back = checkDecoding(encoded);
    require(back.size() == count - count % THREE_BYTE_GROUP, "all of what was encoded");
    require(std::equal(back.begin(), back.end(), run.begin()), "what was encoded");
}

void checkUnits(const char16_t* units, std::size_t count, std::size_t offset, char16_t a,
                char16_t b) {
    Units run(units, count, offset);
    checkFinding(run, a, b);
    checkCounting(run);
    checkNarrowing(run, offset / 2);
    checkPassing(run, narrowPassing, scalar::narrowPassing, "narrowPassing");
    checkEncoding(run, offset / 3);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteFeed feed(data, size);
    const std::size_t offset = feed.take();
    const auto takeUnit = [&] {
        const unsigned low = feed.take();
        return static_cast<char16_t>(low | unsigned{feed.take()} << 8);
    };
    const char16_t a = takeUnit();
    const char16_t b = takeUnit();
    const std::string_view rest = feed.rest();

    Bytes bytes(reinterpret_cast<const std::uint8_t*>(rest.data()), rest.size(), offset);
    checkWidening(bytes, offset / 3);
    checkDecoding(bytes);
    std::u16string units(rest.size() / 2, u'\0');
    std::memcpy(units.data(), rest.data(), units.size() * 2);
    checkUnits(units.data(), units.size(), offset, a, b);
    const std::u16string wide(bytes.begin(), bytes.end());
    checkUnits(wide.data(), wide.size(), offset, a, b);
    return 0;
}
