// Tables of double-byte encodings, read out of ICU's converters.
//
// ICU's data already holds every mapping, so the tables are made from it when an encoding is first
// opened instead of being kept as sources: 24 encodings of 64 KB would be a megabyte and a half of
// generated text, and the day ICU corrected a mapping, reading and writing would disagree.
//
// A lead byte is asked about with one conversion of probes of four bytes: the lead byte, a trail
// byte and two line feeds, which are part of no longer character and so bring the converter back to
// its initial state whatever came before. ICU tells for each unit which source byte its character
// begins at. A pair enters the table if exactly one unit comes of it and the next
// character begins behind it, be the unit a character or U+FFFD for a pair that has none. Whatever
// does otherwise (longer characters, pairs outside of the basic plane, a trail byte that is read
// again on its own) stays NONE, so that the table can only say what the converter says, too.
//
// Making a table takes 0.4 ms (Shift_JIS, GBK) to 1.5 ms (EUC-JP) at 2.5 GHz, mostly for sequences
// that are no characters. A table is 64 KB, of which text touches the rows of its own characters.
#include "streams/DoubleByteTable.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "core/Immortal.h"
#include "text/Cleanup.h"

namespace RynCommon::streams {

namespace {

constexpr char PAD = '\n';
constexpr std::int32_t PROBE_SIZE = 4;
/// No encoding has lower ones in pairs; GB18030 has them in its longer characters.
constexpr std::int32_t FIRST_TRAIL = 0x40;
constexpr std::size_t PROBES_SIZE = std::size_t{256 - FIRST_TRAIL} * PROBE_SIZE;

constexpr bool isSurrogate(UChar unit) {
    return (unit & 0xF800) == 0xD800;
}

/// What ICU makes of the probes of one lead byte.
class Probes {
public:
    void convert(UConverter& converter, std::uint8_t lead) {
        char* probe = bytes_.data();
        for (std::int32_t trail = FIRST_TRAIL; trail < 256; ++trail, probe += PROBE_SIZE) {
            probe[0] = static_cast<char>(lead);
            probe[1] = static_cast<char>(trail);
            probe[2] = probe[3] = PAD;
        }
        const char* from = bytes_.data();
        UChar* to = units_.data();
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(&converter, &to, units_.data() + units_.size(), &from,
                       bytes_.data() + bytes_.size(), offsets_.data(), true, &status);
        ucnv_reset(&converter);
        count_ = U_SUCCESS(status) ? static_cast<std::size_t>(to - units_.data()) : 0;
    }

    /// Calls `take(trail, unit)` for each probe whose first two bytes are one unit together. Each
    /// probe ends with a line feed's unit.
    template <class Take>
    void forEachPair(Take take) const {
        std::int32_t before = -1;
        for (std::size_t i = 0; i + 1 < count_; before = offsets_[i++]) {
            const std::int32_t offset = offsets_[i];
            if (offset % PROBE_SIZE == 0 && offset != before && offsets_[i + 1] == offset + 2 &&
                !isSurrogate(units_[i]))
                take(static_cast<std::uint8_t>(FIRST_TRAIL + offset / PROBE_SIZE), units_[i]);
        }
    }

private:
    std::array<char, PROBES_SIZE> bytes_;
    std::array<UChar, 2 * PROBES_SIZE> units_;
    std::array<std::int32_t, 2 * PROBES_SIZE> offsets_;
    std::size_t count_ = 0;
};

/// The unit that `byte` is on its own; NONE when it begins a longer character or is several units.
UChar findSingle(UConverter& converter, std::uint8_t byte) {
    const char source = static_cast<char>(byte);
    const char* from = &source;
    std::array<UChar, 8> units{};
    UChar* to = units.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(&converter, &to, units.data() + units.size(), &from, from + 1, nullptr, false,
                   &status);
    const bool complete = U_SUCCESS(status) && ucnv_toUCountPending(&converter, &status) == 0;
    ucnv_reset(&converter);
    return complete && to - units.data() == 1 && !isSurrogate(units[0]) ? units[0]
                                                                        : DoubleByteTable::NONE;
}

/// Looks at what the bytes below 0x80 are; false when the tables are not for such an encoding. None
/// of the bytes is left to the converter otherwise, so that U+0000 need not be told from NONE
/// there.
bool findOddities(DoubleByteTable& table) {
    std::size_t count = 0;
    for (std::uint64_t c = 0; c < 0x80; ++c) {
        if (table.singles[c] == c) continue;
        if (table.singles[c] == DoubleByteTable::NONE || count == table.oddities.size())
            return false;
        const std::uint64_t bytes = c * 0x0101010101010101u;
        if (count == 0) table.oddities.fill(bytes);
        table.oddities[count++] = bytes;
    }
    table.odd = count != 0;
    return true;
}

bool isDoubleByte(const UConverter& converter) {
    return ucnv_getType(&converter) == UCNV_MBCS && ucnv_getMinCharSize(&converter) == 1;
}

/// The tables made so far, by the names of ICU's converters, of which it has two dozen.
struct Tables {
    struct Row {
        std::string name;
        std::shared_ptr<const DoubleByteTable> table;
    };
    std::mutex mutex;
    std::vector<Row> rows;
};

Tables& tables() {
    static Immortal<Tables> instance;
    return instance.get();
}

void releaseTables() {
    const std::lock_guard guard(tables().mutex);
    tables().rows = {};
}

constinit CleanupHook cleanupHook(releaseTables);

}  // namespace

std::unique_ptr<DoubleByteTable> makeDoubleByteTable(UConverter& converter) {
    auto table = std::make_unique<DoubleByteTable>();
    const auto probes = std::make_unique<Probes>();
    for (std::size_t byte = 0; byte < 256; ++byte)
        table->singles[byte] = findSingle(converter, static_cast<std::uint8_t>(byte));
    if (!findOddities(*table)) return nullptr;
    for (std::size_t byte = 0x80; byte < 256; ++byte) {
        if (table->singles[byte] != DoubleByteTable::NONE) continue;
        const auto lead = static_cast<std::uint8_t>(byte);
        probes->convert(converter, lead);
        probes->forEachPair([&](std::uint8_t trail, UChar unit) {
            table->pairs[DoubleByteTable::indexOf(lead, trail)] = unit;
        });
    }
    return table;
}

std::shared_ptr<const DoubleByteTable> acquireDoubleByteTable(UConverter& converter) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getName(&converter, &status);
    if (!isDoubleByte(converter) || U_FAILURE(status)) return nullptr;
    const std::lock_guard guard(tables().mutex);
    for (const Tables::Row& row : tables().rows)
        if (row.name == name) return row.table;
    cleanupHook.enrol();
    tables().rows.push_back({name, makeDoubleByteTable(converter)});
    return tables().rows.back().table;
}

}  // namespace RynCommon::streams
