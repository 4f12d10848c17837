// What becomes of each ASCII character in a run, by the escapes asked for.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <RynCommon/Forward.h>

#include "core/UnitScan.h"

namespace RynCommon {

/// What is escaped in a run, apart from what its place in the document asks for anyway.
enum EscapeFlags : unsigned {
    ESCAPE_NONE = 0,
    ESCAPE_MARKUP = 1,      ///< "&", "<" and ">"; every flag below does this, too
    ESCAPE_QUOTE = 2,       ///< the double quote
    ESCAPE_APOSTROPHE = 4,  ///< the apostrophe, as a reference
    ESCAPE_CONTROLS = 8,    ///< what is below U+0020, as references
    /// As references: CR, U+0085 and U+2028, which readers turn into LF, and in Shift_JIS U+007F,
    /// whose byte readers by IBM's tables, ICU's among them, take for U+001A.
    ESCAPE_LINE_ENDS = 16,
    ESCAPE_DELETE = 32,  ///< joined to the others where Shift_JIS is written to be read as it was
};

constexpr char16_t DELETE_CHARACTER = 0x7F;

/// The longest form of one unit: "&#65535;".
constexpr std::size_t LONGEST_FORM = 8;

enum EscapeAction : std::uint8_t { PASS, DROP, AMPERSAND, LESS, GREATER, QUOTE, REFERENCE };

namespace detail {

constexpr EscapeAction controlAction(char16_t unit, unsigned escapes) {
    if ((escapes & ESCAPE_CONTROLS) != 0) return REFERENCE;
    if (unit == u'\r') return (escapes & ESCAPE_LINE_ENDS) != 0 ? REFERENCE : PASS;
    return unit == u'\t' || unit == u'\n' ? PASS : DROP;
}

constexpr EscapeAction actionFor(char16_t unit, unsigned escapes) {
    if (unit < 0x20) return controlAction(unit, escapes);
    if (escapes == ESCAPE_NONE) return PASS;
    switch (unit) {
        case u'&':
            return AMPERSAND;
        case u'<':
            return LESS;
        case u'>':
            return GREATER;
        case u'"':
            return (escapes & ESCAPE_QUOTE) != 0 ? QUOTE : PASS;
        case u'\'':
            return (escapes & ESCAPE_APOSTROPHE) != 0 ? REFERENCE : PASS;
        case DELETE_CHARACTER:
            return (escapes & ESCAPE_DELETE) != 0 ? REFERENCE : PASS;
        default:
            return PASS;
    }
}

}  // namespace detail

using EscapeTable = std::array<EscapeAction, 128>;

/// One table for each combination of escapes.
inline constexpr auto ESCAPE_TABLES = [] {
    std::array<EscapeTable, 64> tables{};
    for (unsigned escapes = 0; escapes < tables.size(); ++escapes) {
        for (char16_t unit = 0; unit < 128; ++unit)
            tables[escapes][unit] = detail::actionFor(unit, escapes);
    }
    return tables;
}();

/// What passes, for the vector kernels. A stop that the escapes do not ask for repeats another or
/// is U+0000, which never passes anyway; of the control characters only the frequent one is told.
inline constexpr auto PASSING_SETS = [] {
    std::array<PassingSet, 64> sets{};
    for (unsigned escapes = 0; escapes < sets.size(); ++escapes) {
        const auto when = [escapes](unsigned flag, char c, char otherwise) {
            return static_cast<std::uint8_t>((escapes & flag) != 0 ? c : otherwise);
        };
        const bool none = escapes == ESCAPE_NONE;
        const char ampersand = none ? '\0' : '&';
        sets[escapes] = {
            when(ESCAPE_DELETE, 0x5E, 0x5F),
            when(ESCAPE_CONTROLS, ' ', '\n'),
            {static_cast<std::uint8_t>(ampersand), static_cast<std::uint8_t>(none ? '\0' : '<'),
             static_cast<std::uint8_t>(none ? '\0' : '>'), when(ESCAPE_QUOTE, '"', ampersand),
             when(ESCAPE_APOSTROPHE, '\'', ampersand)}};
    }
    return sets;
}();

inline char* appendText(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

/// A decimal reference. Takes at most LONGEST_FORM bytes for a unit, ten for any character.
inline char* appendReference(char* out, std::uint32_t number) {
    out = appendText(out, "&#");
    out = std::to_chars(out, out + 7, number).ptr;
    *out++ = ';';
    return out;
}

inline char* appendAction(char* out, EscapeAction action, char16_t unit) {
    switch (action) {
        case AMPERSAND:
            return appendText(out, "&amp;");
        case LESS:
            return appendText(out, "&lt;");
        case GREATER:
            return appendText(out, "&gt;");
        case QUOTE:
            return appendText(out, "&quot;");
        case REFERENCE:
            return appendReference(out, unit);
        case DROP:
            return out;
        case PASS:
            break;
    }
    *out++ = static_cast<char>(unit);
    return out;
}

}  // namespace RynCommon
