// The sections of a property set stream: which properties there are, and where.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "resources/ole/PropertyReader.h"

namespace RynCommon::ole {

/// Types of properties ([MS-OLEPS] 2.15).
enum PropertyType : std::uint32_t {
    TYPE_INT16 = 2,
    TYPE_INT32 = 3,
    TYPE_REAL32 = 4,
    TYPE_REAL64 = 5,
    TYPE_BOOLEAN = 11,
    TYPE_UINT32 = 19,
    TYPE_INT64 = 20,
    TYPE_UINT64 = 21,
    TYPE_NARROW = 30,
    TYPE_WIDE = 31,
    TYPE_FILE_TIME = 64,
    TYPE_BLOB = 65,
    VECTOR_FLAG = 0x1000
};

/// Ids with a meaning in every section.
constexpr std::uint32_t ID_DICTIONARY = 0;
constexpr std::uint32_t ID_CODE_PAGE = 1;

struct Property {
    std::uint32_t id = 0;
    std::uint32_t offset = 0;    ///< from the start of the section
    std::uint32_t type = 0;      ///< 0 for the dictionary, which has none
    std::uint32_t position = 0;  ///< of what follows the type, from the start of the stream
};

struct DictionaryEntry {
    std::uint32_t id = 0;
    /// As stored, terminator included; where the section is written in UTF-16, in UTF-8.
    std::string name;
};

struct PropertySection {
    const Property* find(std::uint32_t id) const;
    /// The id of a name; null when there is none.
    const std::uint32_t* findName(std::string_view name) const;

    OLE_CLSID format;
    std::uint32_t offset = 0;  ///< from the start of the stream
    std::uint32_t size = 0;    ///< as told; nothing relies on it
    std::vector<Property> properties;
    bool hasDictionary = false;
    std::vector<DictionaryEntry> dictionary;
};

struct PropertySetHeader {
    std::uint16_t version = 0;
    std::uint32_t system = 0;
    OLE_CLSID classId;
    std::uint32_t sectionCount = 0;
};

/// Reads the mark of the byte order, which the reader follows from then on; false when it is none.
bool readByteOrder(PropertyReader& reader);
/// Reads the header, byte order included.
bool readHeader(PropertyReader& reader, PropertySetHeader& header);
/// Reads header, section list, tables of properties, types and dictionaries, from the start of the
/// stream; false when any of it runs out of the stream, or when sections, properties and names are
/// more than `most` together.
bool readSections(PropertyReader& reader, PropertySetHeader& header, std::uint32_t most,
                  std::vector<PropertySection>& sections);

}  // namespace RynCommon::ole
