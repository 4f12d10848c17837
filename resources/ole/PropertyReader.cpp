// Reads the integers and texts of a property set stream.
#include "resources/ole/PropertyReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "core/MemoryCheck.h"
#include "resources/ole/ByteOrder.h"

namespace RynCommon::ole {

namespace {

constexpr std::uint32_t WINDOW_SIZE = 4096;
/// Streams are sought by a signed offset.
constexpr std::uint32_t MOST_SIZE = std::numeric_limits<std::int32_t>::max();

}  // namespace

PropertyReader::PropertyReader(OleStream* stream, std::uint32_t mostBytes) : stream_(stream) {
    const std::uint32_t size = stream != nullptr ? stream->GetStreamSize() : 0;
    if (size <= std::min(mostBytes, MOST_SIZE)) size_ = size;
}

bool PropertyReader::seek(std::uint64_t position) {
    if (position > size_) return false;
    position_ = static_cast<std::uint32_t>(position);
    return true;
}

bool PropertyReader::isInWindow(std::uint32_t count) const {
    return position_ >= windowStart_ && position_ - windowStart_ <= windowSize_ &&
           count <= windowSize_ - (position_ - windowStart_);
}

bool PropertyReader::readDirectly(unsigned char* target, std::uint32_t count) {
    const auto position = static_cast<std::int64_t>(position_);
    return stream_->OLEseek(static_cast<std::int32_t>(position), 0) == position &&
           stream_->OLEread(target, count) == count;
}

bool PropertyReader::fillWindow() {
    if (!window_) window_ = std::make_unique_for_overwrite<unsigned char[]>(WINDOW_SIZE);
    windowSize_ = 0;
    const std::uint32_t count = std::min(WINDOW_SIZE, getLeft());
    if (stream_->OLEseek(static_cast<std::int32_t>(position_), 0) != position_) return false;
    windowStart_ = position_;
    windowSize_ = stream_->OLEread(window_.get(), count);
    return true;
}

bool PropertyReader::readBytes(void* target, std::uint32_t count) {
    if (count > getLeft()) return false;
    if (count > WINDOW_SIZE) {
        if (!readDirectly(static_cast<unsigned char*>(target), count)) return false;
    } else if (count > 0) {
        if (!isInWindow(count) && (!fillWindow() || !isInWindow(count))) return false;
        std::memcpy(target, window_.get() + (position_ - windowStart_), count);
    }
    position_ += count;
    return true;
}

bool PropertyReader::readReversed(void* target, std::uint32_t count) {
    auto* const bytes = static_cast<unsigned char*>(target);
    if (!readBytes(bytes, count)) return false;
    std::reverse(bytes, bytes + count);
    return true;
}

template <class Integer>
bool PropertyReader::readInteger(Integer& value) {
    std::array<unsigned char, sizeof(Integer)> bytes{};
    if (!readBytes(bytes.data(), sizeof(Integer))) return false;
    value = load<Integer>(bytes.data(), !swapped_);
    return true;
}

template bool PropertyReader::readInteger(std::uint16_t&);
template bool PropertyReader::readInteger(std::uint32_t&);
template bool PropertyReader::readInteger(std::uint64_t&);

bool PropertyReader::readClassId(OLE_CLSID& value) {
    if (getLeft() < sizeof(OLE_CLSID)) return false;
    const std::uint32_t start = position_;
    OLE_CLSID id;
    const bool complete = readDword(id.data1) && readWord(id.data2) && readWord(id.data3) &&
                          readBytes(id.data4, sizeof id.data4);
    if (complete) {
        value = id;
    } else {
        position_ = start;
    }
    return complete;
}

bool PropertyReader::readNarrow(std::string& bytes, std::uint32_t count) {
    if (count > getLeft()) return false;
    std::string text(count, '\0');
    if (!readBytes(text.data(), count)) return false;
    bytes = std::move(text);
    return true;
}

bool PropertyReader::readWide(UnicodeString& text, std::uint32_t units) {
    if (units > getLeft() / 2) return false;
    std::u16string buffer(units, u'\0');
    if (!readBytes(buffer.data(), 2 * units)) return false;
    for (char16_t& unit : buffer) {
        unit = load16(reinterpret_cast<const unsigned char*>(&unit), !swapped_);
    }
    text = takeWhole({buffer.data(), static_cast<std::int32_t>(units)});
    return true;
}

}  // namespace RynCommon::ole
