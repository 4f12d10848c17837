// The header of a compound file.
#include "resources/ole/OleHeader.h"

#include <cstring>

#include "resources/ole/ByteOrder.h"

namespace RynCommon::ole {

namespace {

constexpr unsigned char SIGNATURE[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};

// Places of the fields.
constexpr std::size_t VERSION = 26;
constexpr std::size_t BYTE_ORDER_MARK = 28;
constexpr std::size_t SECTOR_SHIFT = 30;
constexpr std::size_t MINI_SHIFT = 32;
constexpr std::size_t FAT_SECTORS = 44;
constexpr std::size_t DIRECTORY_START = 48;
constexpr std::size_t MINI_CUTOFF = 56;
constexpr std::size_t MINI_FAT_START = 60;
constexpr std::size_t MINI_FAT_SECTORS = 64;
constexpr std::size_t DIFAT_START = 68;
constexpr std::size_t DIFAT_SECTORS = 72;
constexpr std::size_t DIFAT = 76;

constexpr std::uint16_t LITTLE_ENDIAN_MARK = 0xFFFE;
/// A sector holds at least one directory entry, and at most a MiB.
constexpr std::uint16_t LEAST_SHIFT = 7;
constexpr std::uint16_t MOST_SHIFT = 20;

void appendHexByte(std::string& text, unsigned char byte) {
    constexpr char DIGITS[] = "0123456789abcdef";
    text += DIGITS[byte >> 4];
    text += DIGITS[byte & 15];
}

std::string getVersionText(const unsigned char* bytes) {
    std::string text;
    appendHexByte(text, bytes[0]);
    text += ' ';
    appendHexByte(text, bytes[1]);
    return text;
}

bool isSectorOrEnd(std::int32_t number) {
    return number >= 0 || number == END_OF_CHAIN;
}

bool isSound(const OleHeader& header) {
    return header.sectorShift >= LEAST_SHIFT && header.sectorShift <= MOST_SHIFT &&
           header.miniShift <= header.sectorShift && header.fatSectors >= 0 &&
           header.miniFatSectors >= 0 && header.directoryStart >= 0 &&
           isSectorOrEnd(header.miniFatStart) && isSectorOrEnd(header.difatStart);
}

}  // namespace

bool isSignature(const unsigned char* bytes) {
    return std::memcmp(bytes, SIGNATURE, sizeof SIGNATURE) == 0;
}

bool OleHeader::parse(const unsigned char* bytes) {
    if (!isSignature(bytes)) return false;
    littleEndian = load16(bytes + BYTE_ORDER_MARK, true) == LITTLE_ENDIAN_MARK;
    version = getVersionText(bytes + VERSION);
    sectorShift = load16(bytes + SECTOR_SHIFT, littleEndian);
    miniShift = load16(bytes + MINI_SHIFT, littleEndian);
    fatSectors = loadSigned32(bytes + FAT_SECTORS, littleEndian);
    directoryStart = loadSigned32(bytes + DIRECTORY_START, littleEndian);
    miniCutoff = loadSigned32(bytes + MINI_CUTOFF, littleEndian);
    miniFatStart = loadSigned32(bytes + MINI_FAT_START, littleEndian);
    miniFatSectors = loadSigned32(bytes + MINI_FAT_SECTORS, littleEndian);
    difatStart = loadSigned32(bytes + DIFAT_START, littleEndian);
    difatSectors = loadSigned32(bytes + DIFAT_SECTORS, littleEndian);
    for (std::size_t i = 0; i < difat.size(); ++i) {
        difat[i] = loadSigned32(bytes + DIFAT + 4 * i, littleEndian);
    }
    return isSound(*this);
}

}  // namespace RynCommon::ole
