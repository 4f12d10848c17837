// The built-in names: texts and look-up table, both made by the compiler.
//
// The texts lie one after the other, each followed by a NUL. A text is found through an
// open-addressing hash table whose slots carry part of the hash, so that a text that is not built
// in is hardly ever compared.
#include <array>
#include <cstring>

#include "core/Immortal.h"
#include "core/NameTable.h"

namespace RynCommon {

namespace {

constexpr std::size_t NAME_COUNT = std::size_t{RYNAME_BUILTIN_LAST} + 1;

#define RYN_BUILTIN_NAME(number, identifier, text) u"" text u"\0"
constexpr char16_t TEXTS[] =
#include <RynCommon/RyBuiltinNames.inc>
    ;
#undef RYN_BUILTIN_NAME

// Lengths by number; number 0 is the empty name.
#define RYN_BUILTIN_NAME(number, identifier, text) , sizeof text - 1
constexpr std::uint8_t LENGTHS[] = {0
#include <RynCommon/RyBuiltinNames.inc>
};
#undef RYN_BUILTIN_NAME

// The numbers must run from 1 without a gap, for they are positions in the list.
#define RYN_BUILTIN_NAME(number, identifier, text) , number
constexpr std::uint16_t NUMBERS[] = {0
#include <RynCommon/RyBuiltinNames.inc>
};
#undef RYN_BUILTIN_NAME

consteval bool areNumbersPositions() {
    for (std::size_t i = 0; i < std::size(NUMBERS); ++i) {
        if (NUMBERS[i] != i) return false;
    }
    return std::size(NUMBERS) == NAME_COUNT;
}
static_assert(areNumbersPositions());
static_assert(std::size(TEXTS) <= 0x10000, "offsets have 16 bits");

// Where the text of each number starts. The empty name's is the NUL after the first text.
consteval std::array<std::uint16_t, NAME_COUNT> makeStarts() {
    std::array<std::uint16_t, NAME_COUNT> starts{};
    std::size_t at = 0;
    for (std::size_t number = 1; number < NAME_COUNT; ++number) {
        starts[number] = static_cast<std::uint16_t>(at);
        at += LENGTHS[number] + std::size_t{1};
    }
    starts[0] = LENGTHS[1];
    return starts;
}
constexpr std::array<std::uint16_t, NAME_COUNT> STARTS = makeStarts();

consteval std::int32_t longest() {
    std::int32_t result = 0;
    for (const std::uint8_t length : LENGTHS) {
        if (length > result) result = length;
    }
    return result;
}
constexpr std::int32_t LONGEST = longest();

struct Slot {
    std::uint16_t number = 0;  // 0: free
    std::uint16_t tag = 0;
};

constexpr std::size_t SLOT_COUNT = 4096;
constexpr std::uint64_t SEED = 0x52796E4E616D6573u;

constexpr std::size_t slotOf(std::uint64_t hash) {
    return hash & (SLOT_COUNT - 1);
}
constexpr std::uint16_t tagOf(std::uint64_t hash) {
    return static_cast<std::uint16_t>(hash >> 48);
}

consteval std::array<Slot, SLOT_COUNT> makeSlots() {
    std::array<Slot, SLOT_COUNT> slots{};
    for (std::size_t number = 1; number < NAME_COUNT; ++number) {
        const std::uint64_t hash = hashText(TEXTS + STARTS[number], LENGTHS[number], SEED);
        std::size_t i = slotOf(hash);
        while (slots[i].number != 0) i = slotOf(i + 1);
        slots[i] = {static_cast<std::uint16_t>(number), tagOf(hash)};
    }
    return slots;
}
constexpr std::array<Slot, SLOT_COUNT> SLOTS = makeSlots();

bool isText(std::size_t number, const char16_t* text, std::size_t length) {
    return LENGTHS[number] == length && std::memcmp(TEXTS + STARTS[number], text, 2 * length) == 0;
}

// The strings borrow the texts above and own nothing.
struct BuiltinStrings {
    BuiltinStrings() {
        for (std::size_t i = 0; i < NAME_COUNT; ++i)
            strings[i].setTo(true, TEXTS + STARTS[i], LENGTHS[i]);
    }
    UnicodeString strings[NAME_COUNT];
};

}  // namespace

RyNameEnum findBuiltinName(const char16_t* text, std::int32_t length) noexcept {
    if (length < 1 || length > LONGEST) return RN_EMPTY;
    const std::size_t n = static_cast<std::size_t>(length);
    const std::uint64_t hash = hashText(text, n, SEED);
    for (std::size_t i = slotOf(hash); SLOTS[i].number != 0; i = slotOf(i + 1)) {
        if (SLOTS[i].tag == tagOf(hash) && isText(SLOTS[i].number, text, n))
            return static_cast<RyNameEnum>(SLOTS[i].number);
    }
    return RN_EMPTY;
}

const UnicodeString& builtinNameString(RyNameEnum number) {
    static Immortal<BuiltinStrings> builtin;
    return builtin.get().strings[number];
}

}  // namespace RynCommon
