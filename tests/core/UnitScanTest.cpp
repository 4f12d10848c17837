// The scan kernels against their scalar twins, at every length, alignment and position.
#include "core/UnitScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "UnitRun.h"
#include "core/TextHash.h"

namespace RynCommon {
namespace {

constexpr std::size_t LONGEST = 100;
using Find = const char16_t* (*)(const char16_t*, const char16_t*);

struct FindCase {
    const char* what;
    Find kernel, twin;
    std::u16string stops;
};

template <auto KERNEL, char16_t... UNITS>
const char16_t* find(const char16_t* p, const char16_t* end) {
    return KERNEL(p, end, UNITS...);
}

template <auto KERNEL>
std::vector<const char16_t*> allColumnStops(const char16_t* p, const char16_t* end) {
    std::vector<const char16_t*> all;
    for (ColumnStops stops; p != end;) {
        const char16_t* const from = p;
        p = KERNEL(p, end, stops);
        if (p <= from) ADD_FAILURE() << "stands still";
        all.insert(all.end(), stops.places, stops.places + stops.count);
    }
    return all;
}

template <auto KERNEL>
const char16_t* findFirst(const char16_t* p, const char16_t* end) {
    const std::vector<const char16_t*> all = allColumnStops<KERNEL>(p, end);
    return all.empty() ? end : all.front();
}

const FindCase FIND_CASES[] = {
    {"text", find<findTextStop>, find<scalar::findTextStop>, u"<&]"},
    {"\"", find<findValueStop, u'"'>, find<scalar::findValueStop, u'"'>, u"\"<&\t\n\r"},
    {"'", find<findValueStop, u'\''>, find<scalar::findValueStop, u'\''>, u"'<&\t\n\r"},
    {"unit", find<findUnit, u'\u3042'>, find<scalar::findUnit, u'\u3042'>, u"\u3042"},
    {"NUL", find<findUnit, u'\0'>, find<scalar::findUnit, u'\0'>, std::u16string(1, u'\0')},
    {"->", find<findMarkupStop, u'-', u'>'>, find<scalar::findMarkupStop, u'-', u'>'>, u"->"},
    {"line", find<findLineBreakUnit>, find<scalar::findLineBreakUnit>, u"\r\u0085\u2028\uFFFF"},
    {"column",
     findFirst<findColumnStops>,
     findFirst<scalar::findColumnStops>,
     {u'\n', 0xDC00, 0xDFFF}},
};

// Units that a kernel looking at single bytes, or signed, would take for `stop`.
// A low surrogate among the stops stands for all of them.
std::u16string nearMisses(const std::u16string& stops) {
    std::u16string result;
    const bool withSurrogates = stops.find(0xDC00) != stops.npos;
    for (const char16_t stop : stops) {
        const int candidates[] = {stop + 1,      stop - 1,      stop ^ 0x8000,
                                  stop ^ 0x0100, stop << 8,     stop << 8 | (stop & 0xFF),
                                  stop >> 8,     stop & 0xFF00, stop ^ 0x80};
        for (const int candidate : candidates) {
            const char16_t unit = static_cast<char16_t>(candidate);
            const bool isSurrogate = (unit & 0xFC00) == 0xDC00;
            if (isSurrogate && withSurrogates) continue;
            if (stops.find(unit) == stops.npos) result += unit;
        }
    }
    return result;
}

TEST(UnitScan, FindsTheFirstStop) {
    for (const FindCase& row : FIND_CASES) {
        SCOPED_TRACE(row.what);
        for (std::size_t length = 0; length <= LONGEST; ++length) {
            for (std::size_t offset = 0; offset < ALIGNMENTS; ++offset) {
                UnitRun<char16_t> run(length, offset, u'a');
                ASSERT_EQ(row.kernel(run.begin(), run.end()), run.end()) << length;
                for (std::size_t at = length; at-- > 0;) {
                    // Later stops stay, so that the first of several has to be found.
                    run[at] = row.stops[at % row.stops.size()];
                    ASSERT_EQ(row.kernel(run.begin(), run.end()), run.begin() + at)
                        << length << " " << offset;
                    ASSERT_EQ(row.twin(run.begin(), run.end()), run.begin() + at);
                }
            }
        }
    }
}

TEST(UnitScan, StopsAtNothingElse) {
    for (const FindCase& row : FIND_CASES) {
        SCOPED_TRACE(row.what);
        const std::u16string misses = nearMisses(row.stops);
        for (std::size_t length = 0; length <= LONGEST; ++length) {
            UnitRun<char16_t> run(length, length % ALIGNMENTS, u'a');
            for (std::size_t i = 0; i < length; ++i) run[i] = misses[(i + length) % misses.size()];
            ASSERT_EQ(row.twin(run.begin(), run.end()), run.end()) << length;
            ASSERT_EQ(row.kernel(run.begin(), run.end()), run.end()) << length;
            for (std::size_t at = 0; at < length; ++at) {
                const char16_t before = run[at];
                for (const char16_t stop : row.stops) {
                    run[at] = stop;
                    ASSERT_EQ(row.kernel(run.begin(), run.end()), run.begin() + at) << length;
                }
                run[at] = before;
            }
        }
    }
}

TEST(UnitScan, NotesAllColumnStopsInOrder) {
    constexpr std::size_t LENGTH = 1000;
    for (const std::size_t distance : {1, 2, 7, 16, 33, 200}) {
        UnitRun<char16_t> run(LENGTH, distance % ALIGNMENTS, u'a');
        std::vector<const char16_t*> expected;
        for (std::size_t at = distance / 2; at < LENGTH; at += distance) {
            run[at] = at % 3 == 0 ? u'\n' : char16_t{0xDEAD};
            expected.push_back(run.begin() + at);
        }
        EXPECT_EQ(allColumnStops<findColumnStops>(run.begin(), run.end()), expected) << distance;
        EXPECT_EQ(allColumnStops<scalar::findColumnStops>(run.begin(), run.end()), expected);
    }
}

TEST(UnitScan, CountsLinesAndCharacters) {
    const struct {
        const char* what;
        std::u16string text;
        std::size_t lines, characters;
    } rows[] = {{"nothing", u"", 0, 0},
                {"no line end", u"abc", 0, 3},
                {"line end last", u"abc\n", 1, 0},
                {"CR is a character", u"a\r\nb\r", 1, 2},
                {"a pair is one character", u"\n\U0001F600\U0001F600a", 1, 3},
                {"lone low surrogates are none", {u'\n', 0xDC00, 0xDFFF, u'a'}, 1, 1},
                {"lone high surrogates are", {0xDBFF, 0xD800, 0xE000}, 0, 3}};
    for (const auto& row : rows) {
        const char16_t* const p = row.text.data();
        const LineCount count = countLines(p, p + row.text.size());
        EXPECT_EQ(count.lines, row.lines) << row.what;
        EXPECT_EQ(count.charactersAfterLast, row.characters) << row.what;
    }
}

TEST(UnitScan, WidensTheAsciiPrefix) {
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        for (std::size_t offset = 0; offset < ALIGNMENTS; ++offset) {
            UnitRun<std::uint8_t> in(length, offset, 0);
            UnitRun<char16_t> out(length, ALIGNMENTS - offset, u'?');
            for (std::size_t i = 0; i < length; ++i) in[i] = static_cast<std::uint8_t>(i);
            ASSERT_EQ(widenAscii(in.begin(), length, out.begin()), length);
            for (std::size_t i = 0; i < length; ++i) ASSERT_EQ(out[i], i);
            for (std::size_t at = length; at-- > 0;) {
                in[at] = static_cast<std::uint8_t>(at % 2 == 0 ? 0x80 : 0xFF);
                std::fill(out.begin(), out.end(), u'?');
                ASSERT_EQ(widenAscii(in.begin(), length, out.begin()), at) << length;
                ASSERT_EQ(scalar::widenAscii(in.begin(), length, out.begin()), at);
                for (std::size_t i = 0; i < at; ++i) ASSERT_EQ(out[i], i);
            }
        }
    }
}

TEST(UnitScan, NarrowsAndWidensLatin1) {
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        for (std::size_t offset = 0; offset < ALIGNMENTS; ++offset) {
            UnitRun<char16_t> units(length, offset, u'a');
            for (std::size_t i = 0; i < length; ++i)
                units[i] = static_cast<char16_t>((i * 37 + 200) & 0xFF);
            ASSERT_TRUE(isLatin1(units.begin(), length)) << length;

            UnitRun<std::uint8_t> bytes(length, ALIGNMENTS - offset, 0);
            narrowLatin1(units.begin(), length, bytes.begin());
            UnitRun<char16_t> back(length, offset, u'?');
            widenLatin1(bytes.begin(), length, back.begin());
            for (std::size_t i = 0; i < length; ++i) {
                ASSERT_EQ(bytes[i], (i * 37 + 200) & 0xFF) << length;
                ASSERT_EQ(back[i], units[i]) << length;
            }

            for (std::size_t at = 0; at < length; ++at) {
                const char16_t before = units[at];
                for (const char16_t wide : {u'\u0100', u'\u8000', u'\uFF00', u'\uFFFF'}) {
                    units[at] = wide;
                    ASSERT_FALSE(isLatin1(units.begin(), length)) << length << " " << at;
                    ASSERT_FALSE(scalar::isLatin1(units.begin(), length));
                }
                units[at] = before;
            }
        }
    }
}

// Each unit at each place of a run that otherwise passes.
TEST(UnitScan, CopiesWhatPasses) {
    const PassingSet set{0x5E, '\n', {'&', '<', '>', '"', '&'}};
    for (std::size_t length = 0; length <= 4 * PASSING_GROUP + 1; length += 7) {
        UnitRun<char16_t> units(length, length % ALIGNMENTS, u'a');
        UnitRun<std::uint8_t> bytes(length, length % ALIGNMENTS, 'a');
        UnitRun<char> out(length, 1, '?');
        const std::size_t inGroups = length - length % PASSING_GROUP;
        for (std::size_t at = 0; at < length; ++at) {
            for (unsigned unit = 0; unit < 0x200; unit += at % 3 == 0 ? 1 : 37) {
                const std::size_t expected = set.holds(unit) ? inGroups : std::min(at, inGroups);
                units[at] = static_cast<char16_t>(unit);
                ASSERT_EQ(narrowPassing(units.begin(), length, set, out.begin()), expected)
                    << length << " " << at << " " << unit;
                if (expected > at) {
                    ASSERT_EQ(out[at], static_cast<char>(unit));
                }
                if (unit > 0xFF) continue;
                bytes[at] = static_cast<std::uint8_t>(unit);
                ASSERT_EQ(copyPassing(bytes.begin(), length, set, out.begin()), expected);
            }
            units[at] = u'b';
            bytes[at] = 'b';
        }
    }
}

// What the compiler works out for constant tables is what running code finds.
TEST(TextHash, IsTheSameWhenCompiledAndWhenRun) {
    constexpr std::uint64_t compiled[] = {hashText(u"", 0, 1),       hashText(u"a", 1, 1),
                                          hashText(u"abc", 3, 1),    hashText(u"abcd", 4, 1),
                                          hashText(u"abcde", 5, 1),  hashText(u"abcdefgh", 8, 1),
                                          hashText(u"\uFFFF", 1, 1), hashText(u"abcdefghi", 9, 1)};
    const std::u16string texts[] = {u"",      u"a",        u"abc",    u"abcd",
                                    u"abcde", u"abcdefgh", u"\uFFFF", u"abcdefghi"};
    for (std::size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(hashText(texts[i].data(), texts[i].size(), 1), compiled[i]) << i;
}

TEST(TextHash, DependsOnEveryUnitTheLengthAndTheSeed) {
    std::vector<std::uint64_t> hashes;
    for (std::size_t length = 0; length < 30; ++length) {
        std::u16string text(length, u'\0');
        hashes.push_back(hashText(text.data(), length, 1));
        hashes.push_back(hashText(text.data(), length, 2));
        for (std::size_t at = 0; at < length; ++at) {
            text[at] = u'\1';
            hashes.push_back(hashText(text.data(), length, 1));
            text[at] = u'\0';
        }
    }
    const std::size_t count = hashes.size();
    std::sort(hashes.begin(), hashes.end());
    hashes.erase(std::unique(hashes.begin(), hashes.end()), hashes.end());
    EXPECT_EQ(hashes.size(), count);
    EXPECT_EQ(textHashSeed(), textHashSeed());
}

}  // namespace
}  // namespace RynCommon
