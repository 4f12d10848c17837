// The raising routines for system and input/output errors, with the places and codes that they
// know.
#pragma once

#include <RynCommon/Forward.h>

namespace RynCommon {

/// A place that raises errors. The numbers index the table of place names and are fixed.
enum ErrorLocation : int {
    LOCATION_NONE = -1,  ///< no place; the source of the error stays empty
    LOCATION_DOCUMENT_LOAD_NEXT_NODE = 0,
    LOCATION_DOCUMENT_DO_SAVE = 1,
    LOCATION_ATTRMAP_SET_NAMED_ITEM = 2,
    LOCATION_ATTRMAP_SET_NAMED_ITEM_NS = 3,
    LOCATION_ELEMENT_REMOVE_ATTRIBUTE_NODE = 4,
    LOCATION_NODE_SET_NODE_VALUE = 5,
    LOCATION_NODE_INSERT_BEFORE = 6,
    LOCATION_NODE_REPLACE_CHILD = 7,
    LOCATION_NODE_REMOVE_CHILD = 8,
    LOCATION_NODE_APPEND_CHILD = 9,
    LOCATION_PARSER_CHECK_STREAM = 10,
    LOCATION_PARSER_PUSH_STREAM = 11,
    LOCATION_PARSER_SET_INPUT = 12,
    LOCATION_PARSER_IS_WHITESPACE = 13,
    LOCATION_PARSER_IS_EMPTY_ELEMENT_TAG = 14,
    LOCATION_PARSER_GET_ATTRIBUTE_NAMESPACE = 15,
    LOCATION_PARSER_GET_ATTRIBUTE_NAME = 16,
    LOCATION_PARSER_GET_ATTRIBUTE_PREFIX = 17,
    LOCATION_PARSER_GET_ATTRIBUTE_VALUE = 18,
    LOCATION_SERIALIZER_SET_OUTPUT = 19,
    LOCATION_SERIALIZER_START_DOCUMENT = 20,
    LOCATION_SERIALIZER_ATTRIBUTE = 21,
    LOCATION_SERIALIZER_END_TAG = 22,
    LOCATION_SERIALIZER_DOCDECL = 23,  ///< has an empty name
    LOCATION_SERIALIZER_CHECK_STREAM = 24,
    LOCATION_PLATFORM_PARSER = 25,  ///< has an empty name
    LOCATION_MEM_STREAM = 26,
    LOCATION_TEMP_FILE = 27,
};

/// Codes of the system category. Codes without a text of their own raise the fallback text.
enum SystemErrorCode : unsigned short {
    SYSTEM_OUT_OF_MEMORY = 2049,  ///< carried by the RyError made from std::bad_alloc
    SYSTEM_CXX_EXCEPTION = 2050,  ///< carried by the RyError made from another std::exception
    SYSTEM_ARG_IS_NULL = 2051,
    SYSTEM_INDEX_OUT_OF_RANGE = 2052,  ///< fallback text
    SYSTEM_WRONG_DOCUMENT = 2054,
    SYSTEM_NOT_AN_ATTR = 2055,
    SYSTEM_ATTR_IN_USE = 2056,
    SYSTEM_NOT_A_CHILD = 2057,
    SYSTEM_HIERARCHY = 2058,  ///< a node put under itself or a descendant; fallback text
    SYSTEM_WRONG_STATE =
        2059,  ///< a call or a node kind that does not fit; names the node type if one is given
    SYSTEM_START_DOCUMENT_MISPLACED = 2060,
    SYSTEM_ATTRIBUTE_MISPLACED = 2061,
    SYSTEM_END_TAG_UNEXPECTED = 2062,
    SYSTEM_END_TAG_MISMATCH = 2063,  ///< takes the end tag's name and the start tag's
    SYSTEM_DOCDECL_UNEXPECTED = 2064,
    SYSTEM_NOT_WELL_FORMED = 2065,  ///< what conformant output refuses; fallback text
    SYSTEM_UNSUPPORTED_NODE = 2066,
};

/// Codes of the input/output category.
enum IoErrorCode : unsigned short {
    IO_CANNOT_OPEN = 4099,  ///< takes the path
    IO_UNEXPECTED_END = 4100,
    IO_OUTPUT_NOT_SET = 4101,
    IO_INPUT_ERROR = 4102,
    IO_OUTPUT_ERROR = 4103,
    IO_CANNOT_REMOVE_TEMP = 4109,  ///< takes the path
    IO_CANNOT_CREATE_TEMP = 4110,  ///< takes the path
};

/// Throws the RyError of a system code: "SYSTEM ERROR: " and the code's text, which names `argName`
/// ("arg" when it is empty) and `arg2` where the text has a place for them. Line and column are -1,
/// the URI is empty.
[[noreturn]] void throwSystemError(unsigned short code, int location,
                                   const UnicodeString& argName = UnicodeString(),
                                   const UnicodeString& arg2 = UnicodeString());

/// Throws the RyError of an input/output code; `arg` is the path where the code's text has a place
/// for one.
[[noreturn]] void throwIoError(unsigned short code, int location,
                               const UnicodeString& arg = UnicodeString());

/// "RynCommon::RyNode::appendChild" and its like; empty for places without a name and for numbers
/// outside the table.
UnicodeString getErrorLocationName(int location);

}  // namespace RynCommon
