// One entry of a compound file's directory.
#include <RynCommon/OleCompFile.h>

#include <array>
#include <cstring>

#include "core/MemoryCheck.h"
#include "resources/ole/ByteOrder.h"

namespace RynCommon {

namespace {

// Places of the fields in the 128 bytes of an entry.
constexpr std::size_t NAME_LENGTH = 64;
constexpr std::size_t TYPE = 66;
constexpr std::size_t COLOR = 67;
constexpr std::size_t LEFT_SIBLING = 68;
constexpr std::size_t RIGHT_SIBLING = 72;
constexpr std::size_t CHILD = 76;
constexpr std::size_t CLASS_ID = 80;
constexpr std::size_t STATE_BITS = 96;
constexpr std::size_t CREATION_TIME = 100;
constexpr std::size_t MODIFICATION_TIME = 108;
constexpr std::size_t START_SECTOR = 116;
constexpr std::size_t STREAM_SIZE = 120;

/// In bytes, the terminator included.
constexpr std::uint16_t LONGEST_NAME = 64;

/// `length` bytes of UTF-16 without their zero units.
UnicodeString readName(const unsigned char* bytes, std::uint16_t length, bool littleEndian) {
    std::array<char16_t, LONGEST_NAME / 2> units{};
    std::int32_t count = 0;
    for (std::size_t i = 0; i < length / 2U; ++i) {
        const std::uint16_t unit = ole::load16(bytes + 2 * i, littleEndian);
        if (unit != 0) units[static_cast<std::size_t>(count++)] = unit;
    }
    return takeWhole({units.data(), count});
}

OleStorageType toStorageType(unsigned char type) {
    return type <= OLE_ROOT ? static_cast<OleStorageType>(type) : OLE_INVALID;
}

}  // namespace

OleDirInfo::OleDirInfo() = default;

bool OleDirInfo::parse(const unsigned char* bytes, bool littleEndian) {
    const std::uint16_t nameLength = ole::load16(bytes + NAME_LENGTH, littleEndian);
    if (nameLength > LONGEST_NAME) return false;
    const std::int32_t id = id_;
    *this = OleDirInfo();
    id_ = id;
    name_ = readName(bytes, nameLength, littleEndian);
    type_ = toStorageType(bytes[TYPE]);
    color_ = bytes[COLOR];
    leftSibling_ = ole::loadSigned32(bytes + LEFT_SIBLING, littleEndian);
    rightSibling_ = ole::loadSigned32(bytes + RIGHT_SIBLING, littleEndian);
    child_ = ole::loadSigned32(bytes + CHILD, littleEndian);
    if (isStorage() || isRoot()) {
        std::memcpy(classId_, bytes + CLASS_ID, sizeof classId_);
        stateBits_ = ole::load32(bytes + STATE_BITS, littleEndian);
        creationTime_ = ole::load64(bytes + CREATION_TIME, littleEndian);
        modificationTime_ = ole::load64(bytes + MODIFICATION_TIME, littleEndian);
    }
    if (isStream() || isRoot()) {
        startSector_ = ole::loadSigned32(bytes + START_SECTOR, littleEndian);
        size_ = ole::load32(bytes + STREAM_SIZE, littleEndian);
    }
    return true;
}

bool OleDirInfo::compareName(const char* name) const {
    return name != nullptr && name_ == takeWhole(UnicodeString(name));
}

}  // namespace RynCommon
