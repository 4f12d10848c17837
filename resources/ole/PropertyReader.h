// Reads the integers and texts of a property set stream.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>

#include <cstdint>
#include <memory>
#include <string>

namespace RynCommon::ole {

/// A stream of a compound file, not owned, read through a window of a few KiB, since property sets
/// are read in steps of two and four bytes. Each read moves the position; where the stream ends
/// before, it is false and leaves its result and the position alone.
class PropertyReader {
public:
    PropertyReader() = default;
    /// @param mostBytes  larger streams count as empty, as do those of 2 GiB and above
    PropertyReader(OleStream* stream, std::uint32_t mostBytes);

    /// Little-endian until it is told otherwise.
    void setSwapped(bool swapped) { swapped_ = swapped; }
    bool isSwapped() const { return swapped_; }
    /// In bytes.
    std::uint32_t getSize() const { return size_; }
    std::uint32_t getPosition() const { return position_; }
    std::uint32_t getLeft() const { return size_ - position_; }

    /// Positions up to the size exist.
    bool seek(std::uint64_t position);
    bool readBytes(void* target, std::uint32_t count);
    /// The last byte first.
    bool readReversed(void* target, std::uint32_t count);
    bool readWord(std::uint16_t& value) { return readInteger(value); }
    bool readDword(std::uint32_t& value) { return readInteger(value); }
    bool readQword(std::uint64_t& value) { return readInteger(value); }
    bool readClassId(OLE_CLSID& value);
    bool readNarrow(std::string& bytes, std::uint32_t count);
    bool readWide(UnicodeString& text, std::uint32_t units);

private:
    template <class Integer>
    bool readInteger(Integer& value);
    bool isInWindow(std::uint32_t count) const;
    bool fillWindow();
    bool readDirectly(unsigned char* target, std::uint32_t count);

    OleStream* stream_ = nullptr;
    bool swapped_ = false;
    std::uint32_t size_ = 0;
    std::uint32_t position_ = 0;
    std::unique_ptr<unsigned char[]> window_;
    std::uint32_t windowStart_ = 0;
    std::uint32_t windowSize_ = 0;
};

}  // namespace RynCommon::ole
