// Kinds and units of property values.
#pragma once

#include <cstdint>

namespace RynCommon {

/// What a value holds (3 bits of its tag).
enum RyValueType : std::uint8_t {
    RYVALUE_NULL = 0,
    RYVALUE_INTEGER = 1,   ///< 32-bit signed
    RYVALUE_REAL = 2,      ///< 32-bit float
    RYVALUE_NAME = 3,      ///< name number
    RYVALUE_STRING = 4,    ///< text of its own
    RYVALUE_RCOBJECT = 5,  ///< counted object
    RYVALUE_UNUSED = 6,    ///< made by nothing
    RYVALUE_COMPOUND = 7   ///< counted map of named values
};

/// Unit of a number, or the sort of a string or name (5 bits of a value's tag).
enum RyValueUnitType : std::uint8_t {
    RYUNIT_NONE = 0,  ///< none; a string of unknown sort
    RYUNIT_NUMBER = 1,
    RYUNIT_PERCENTAGE = 2,
    RYUNIT_EM = 3,
    RYUNIT_EX = 4,
    RYUNIT_PX = 5,  ///< counts as a relative length
    RYUNIT_CM = 6,
    RYUNIT_MM = 7,
    RYUNIT_IN = 8,
    RYUNIT_PT = 9,    ///< 1/72 inch
    RYUNIT_PC = 10,   ///< 12 points
    RYUNIT_JPT = 11,  ///< Japanese point; converts to nothing
    RYUNIT_Q = 12,    ///< quarter millimetre
    RYUNIT_DEG = 13,
    RYUNIT_RAD = 14,
    RYUNIT_GRAD = 15,
    RYUNIT_MS = 16,
    RYUNIT_S = 17,
    RYUNIT_HZ = 18,
    RYUNIT_KHZ = 19,
    RYUNIT_CHARACTER = 20,  ///< an integer that is a code point
    RYUNIT_LITERAL = 21,    ///< a quoted string
    RYUNIT_URI = 22,
    RYUNIT_NAME = 23,
    RYUNIT_COLOR = 24,
    RYUNIT_DPI = 28,
    RYUNIT_TWIP = 29,   ///< 1/20 point
    RYUNIT_AREA = 30,   ///< square points: pt times pt
    RYUNIT_VOLUME = 31  ///< cubic points
};

}  // namespace RynCommon
